# What cmake --install puts where: solvanto, its tools and the scripts that serve runs into bin, the companions
# into libexec/solvanto, examples and scripts into share/solvanto, manual pages and documentation.
include(GNUInstallDirs)
set(companionsfolder ${CMAKE_INSTALL_LIBEXECDIR}/solvanto)
set(sharedfolder ${CMAKE_INSTALL_DATADIR}/solvanto)
set(runscripts account report seed tidy workingfolder)

# Tools are there only where the libraries were that they need.
get_property(tools GLOBAL PROPERTY solvantotools)
install(TARGETS solvanto ${tools} DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS ${companionprograms} DESTINATION ${companionsfolder})
get_property(filecompanions GLOBAL PROPERTY solvantofilecompanions)
if(filecompanions)
  install(TARGETS ${filecompanions} DESTINATION ${companionsfolder})
endif()
list(TRANSFORM runscripts PREPEND ${CMAKE_SOURCE_DIR}/scripts/ OUTPUT_VARIABLE runscriptfiles)
install(PROGRAMS ${runscriptfiles} DESTINATION ${sharedfolder}/scripts)
install(FILES scripts/lib.sh DESTINATION ${sharedfolder}/scripts)
install(DIRECTORY examples DESTINATION ${sharedfolder} USE_SOURCE_PERMISSIONS)
# The readers: Python's where scripts/account finds it, R's as the sources that R CMD INSTALL takes.
install(DIRECTORY python r report DESTINATION ${sharedfolder}
  PATTERN __pycache__ EXCLUDE PATTERN tests EXCLUDE)
install(FILES README.md CHANGELOG.md CITATION.cff DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} RENAME copyright)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

# A link in a folder to a path from the prefix; relative, so that the prefix may be moved.
function(installlink folder name path)
  set(link ${CMAKE_BINARY_DIR}/links/${folder}/${name})
  file(RELATIVE_PATH target /${folder} /${path})
  get_filename_component(linkfolder ${link} DIRECTORY)
  file(MAKE_DIRECTORY ${linkfolder})
  file(CREATE_LINK ${target} ${link} SYMBOLIC)
  install(FILES ${link} DESTINATION ${folder})
endfunction()
foreach(script ${runscripts})
  installlink(${CMAKE_INSTALL_BINDIR} solvanto-${script} ${sharedfolder}/scripts/${script})
endforeach()
# scripts/workingfolder looks for the programs, solvanto among them, beside scripts and examples.
installlink(${sharedfolder} bin ${companionsfolder})
installlink(${companionsfolder} solvanto ${CMAKE_INSTALL_BINDIR}/solvanto)
foreach(tool ${tools})
  installlink(${companionsfolder} ${tool} ${CMAKE_INSTALL_BINDIR}/${tool})
endforeach()
installlink(${CMAKE_INSTALL_DOCDIR} examples ${sharedfolder}/examples)

# Manual pages, of programs and scripts always, of docs/ where lowdown is installed.
set(manpages ${CMAKE_BINARY_DIR}/man)
set(manpagesources ${runscriptfiles})
foreach(program solvanto ${tools} ${companionprograms} ${filecompanions})
  list(APPEND manpagesources $<TARGET_FILE:${program}>)
endforeach()
file(GLOB docpages CONFIGURE_DEPENDS docs/*.md)
add_custom_command(OUTPUT ${manpages}/solvanto.1
  COMMAND ${CMAKE_SOURCE_DIR}/cmake/manpages.sh ${PROJECT_VERSION} ${manpages} ${manpagesources}
  DEPENDS solvantoprograms ${tools} ${filecompanions} ${manpagesources} ${docpages} cmake/manpages.sh cmake/manpage.awk VERBATIM)
add_custom_target(manpages ALL DEPENDS ${manpages}/solvanto.1)
foreach(section 1 5 7)
  install(DIRECTORY ${manpages}/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section}
    FILES_MATCHING PATTERN *.${section})
endforeach()

# scripts/package: a package for Debian.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "The Solvanto developers")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "stochastic simulator of breeding populations")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS tabix) # bgzip, for solvanto-tidy
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "bcftools, plink2") # plink2 for solvanto-export --to pgen
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Founder haplotypes from a coalescent, a pedigree, haplotypes dropped
through it with crossing overs and mutations, SNP chips and QTN, true
breeding values and phenotypes, selection on values or predictions, gene
editing and gene drives. A batch program that works in one folder.")
include(CPack)
