# Files of a run folder: where they are, whether the run is at its end, lines of fixed columns.

refuse <- function(...) stop(..., call. = FALSE)
cutfile <- function(file, line) refuse(file, ":", line, ": is cut; was the run cut short?")

# The folder, once it is clear that a run has been there and that none works in it now.
runfolder <- function(folder) {
  if (!dir.exists(folder)) refuse(folder, ": there is no such folder")
  if (!dir.exists(file.path(folder, "SimulatedData")))
    refuse(folder, ": holds no folder SimulatedData; did a run end here?")
  if (.Call("islocked", path.expand(file.path(folder, "SolvantoSpec.txt")), PACKAGE = "solvanto"))
    refuse(folder, ": a run is under way in this folder; wait for its end")
  folder
}

# A file of the folder, plain or packed (.gz). advice: what makes a run leave it.
findfile <- function(folder, name, advice = "") {
  path <- file.path(folder, name)
  if (file.exists(path)) return(path)
  if (file.exists(paste0(path, ".gz"))) return(paste0(path, ".gz"))
  refuse(path, ": is missing", if (nzchar(advice)) paste0("; ", advice))
}

ispacked <- function(file) endsWith(file, ".gz")

readbytes <- function(file) {
  if (!ispacked(file)) return(readBin(file, "raw", file.size(file)))
  stream <- gzfile(file, "rb")
  on.exit(close(stream))
  parts <- list()
  repeat {
    part <- readBin(stream, "raw", 2^24)
    if (length(part) == 0) break
    parts[[length(parts) + 1]] <- part
  }
  do.call(c, parts)
}

# The lines behind the titles; the last one must be complete.
lines_of <- function(file, titles = 1) {
  content <- readbytes(file)
  if (length(content) && content[length(content)] != as.raw(10)) cutfile(file, sum(content == as.raw(10)) + 1)
  lines <- strsplit(rawToChar(content), "\n", fixed = TRUE)[[1]]
  if (titles > 0) utils::tail(lines, -titles) else lines
}

# The doubles nearest to texts of numbers; NA for other texts.
exact <- function(texts) .Call("exactnumbers", texts, PACKAGE = "solvanto")

# A table of fixed columns, by their widths. What a row doesn't hold is NA: merges leave shorter rows.
fixed <- function(file, widths, titles = 1) {
  lines <- lines_of(file, titles)
  ends <- cumsum(widths)
  table <- matrix(NA_real_, length(lines), length(widths))
  if (length(lines) == 0) return(table)
  for (k in seq_along(widths)) {
    there <- nchar(lines) >= ends[k]
    texts <- substring(lines[there], ends[k] - widths[k] + 1, ends[k])
    values <- exact(texts)
    wrong <- is.na(values) & trimws(texts) != "NaN"
    if (any(wrong)) refuse(file, ": column ", k, ": ", trimws(texts[wrong][1]), " is no number")
    table[there, k] <- values
  }
  table
}

words_of <- function(file, titles = 0) strsplit(trimws(lines_of(file, titles)), "[ \t]+")

# Individuals of each generation, from generation 1 on.
generationsizes <- function(folder) fixed(findfile(folder, "SimulatedData/NbOfIndivInEachGen.txt"), c(4, 20, 20, 20))[, 2]

# The generation of individuals 1 to n, which must be whole generations.
wholegenerations <- function(folder, file, n) {
  sizes <- generationsizes(folder)
  if (!n %in% cumsum(sizes))
    refuse(file, ": holds ", n, " individuals, which are no whole generations of ", folder, "; was the run cut short?")
  utils::head(rep(seq_along(sizes), sizes), n)
}
