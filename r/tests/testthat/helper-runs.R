# Run folders that the tests share: examples, run once. The driver of the tests sets where all is.
root <- Sys.getenv("SOLVANTO_ROOT")
bin <- Sys.getenv("SOLVANTO_BIN")
runs <- Sys.getenv("SOLVANTO_RUNS")

example <- function(name) {
  folder <- file.path(runs, name)
  if (!dir.exists(folder)) {
    system2(file.path(root, "scripts/workingfolder"), c(name, folder, bin))
    system(paste("cd", shQuote(folder), "&& ./runexample >/dev/null 2>&1"))
  }
  folder
}

copied <- function(name) {
  top <- tempfile()
  dir.create(top)
  file.copy(example(name), top, recursive = TRUE, copy.date = TRUE)
  file.path(top, name)
}
