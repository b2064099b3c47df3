# The specification file: read into a list, written from one.

matrixkeys <- c("GeneticCorrelationMatrix", "ResidualCorrelationMatrix")

values_of <- function(words) {
  numbers <- exact(words)
  if (length(words) && !anyNA(numbers)) return(numbers)
  if (all(is.na(numbers))) return(words)
  as.list(words) |> Map(f = function(word, number) if (is.na(number)) word else number, numbers) |> unname()
}

read_spec <- function(folder) {
  path <- if (dir.exists(folder)) file.path(folder, "SolvantoSpec.txt") else folder
  if (!file.exists(path)) refuse(path, ": can't be read: there is no such file")
  spec <- list()
  inmatrix <- ""
  for (line in gsub("[ \t\r]", "", readLines(path, warn = FALSE))) {
    if (!nzchar(line) || startsWith(line, "#") || startsWith(tolower(line), "box")) next
    words <- strsplit(line, ",", fixed = TRUE)[[1]]
    matrix <- match(tolower(words[1]), tolower(matrixkeys))
    if (!is.na(matrix)) {
      inmatrix <- matrixkeys[matrix]
      spec[[inmatrix]] <- list()
    } else if (nzchar(inmatrix) && !is.na(suppressWarnings(as.numeric(words[1])))) {
      spec[[inmatrix]] <- c(spec[[inmatrix]], list(exact(words)))
    } else {
      inmatrix <- ""
      spec[[words[1]]] <- values_of(words[-1])
    }
  }
  spec
}

# The program of a folder, or of the path.
program <- function(folder = ".") {
  own <- file.path(folder, "solvanto")
  if (file.exists(own)) return(normalizePath(own))
  found <- Sys.which("solvanto")
  if (!nzchar(found)) refuse(own, ": is missing, and no solvanto is on the path")
  unname(found)
}

spec_keys <- function(executable = program()) {
  lines <- system2(executable, "--keys", stdout = TRUE)
  field <- function(name) {
    found <- grep(paste0("^    \"", name, "\": "), lines, value = TRUE)
    gsub("^\"|\"$", "", sub(",$", "", sub(paste0("^    \"", name, "\": "), "", found)))
  }
  data.table(name = field("name"), box = as.integer(field("box")), form = field("form"), default = field("default"), needs = field("needs"),
             code = as.integer(field("code")), meaning = gsub("\\\\\"", "\"", field("meaning")))
}

write_spec <- function(spec, folder, executable = program(folder)) {
  known <- spec_keys(executable)
  place <- match(tolower(names(spec)), tolower(known$name))
  if (anyNA(place)) {
    wrong <- names(spec)[is.na(place)][1]
    refuse(wrong, ": is no key; the nearest is ", known$name[which.min(utils::adist(tolower(wrong), tolower(known$name)))])
  }
  # Keys that need others to take effect are left to the program.
  missing <- setdiff(which(known$default == "required" & known$needs == ""), place)
  if (length(missing)) refuse("these keys are missing: ", paste(known$name[missing], collapse = ", "))
  lines <- character()
  box <- 0
  for (k in seq_len(nrow(known))) {
    while (box < known$box[k]) {
      box <- box + 1
      lines <- c(lines, paste("Box", box))
    }
    if (k %in% place) lines <- c(lines, speclines(known[k], spec[[match(k, place)]]))
  }
  path <- file.path(folder, "SolvantoSpec.txt")
  writeLines(lines, paste0(path, ".new"))
  if (!file.rename(paste0(path, ".new"), path)) refuse(path, ": can't be written")
  invisible(path)
}

specword <- function(name, value) {
  text <- if (is.numeric(value)) format(value, digits = 17, trim = TRUE, scientific = abs(value) < 1e-4 && value != 0) else as.character(value)
  if (is.numeric(value) && identical(as.numeric(format(value, digits = 15)), as.numeric(value)))
    text <- format(value, digits = 15, trim = TRUE, scientific = abs(value) < 1e-4 && value != 0)
  if (!nzchar(text) || grepl("[, \t\n]", text))
    refuse(name, ": \"", text, "\" can't be a value: it is empty or holds a comma or a blank")
  text
}

speclines <- function(key, value) {
  words <- function(cells) paste(vapply(cells, function(cell) specword(key$name, cell), ""), collapse = ",")
  if (key$form == "matrix rows") return(c(key$name, vapply(value, words, "")))
  paste0(formatC(key$name, width = -52), ",", words(value))
}
