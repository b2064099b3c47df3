# Writes the header with the version of the release and the commit of the build; an unchanged
# header stays as it is, so that nothing is built anew.
#   RELEASE  version of the project;  SOURCE  its folder;  HEADER  file to write
execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --abbrev=12 --match=-
  OUTPUT_VARIABLE commit ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR NOT commit)
  set(commit unknown) # sources without a history, as of a release
endif()
set(text "#define SOLVANTO_RELEASE \"${RELEASE}\"\n#define SOLVANTO_COMMIT \"${commit}\"\n")
if(EXISTS ${HEADER})
  file(READ ${HEADER} before)
endif()
if(NOT before STREQUAL text)
  file(WRITE ${HEADER} "${text}")
endif()
