# Starting runs, and an account of what they left.

run <- function(folder, spec = NULL, seed = NULL, progress = interactive(), executable = program(folder)) {
  if (!dir.exists(folder)) refuse(folder, ": there is no such folder")
  executable <- normalizePath(executable)
  if (!is.null(spec)) write_spec(spec, folder, executable)
  if (!is.null(seed)) writeLines(format(seed, scientific = FALSE), file.path(folder, "Seed.txt"))
  report <- tempfile()
  errors <- tempfile()
  on.exit(unlink(c(report, errors)))
  # With progress the line of the program goes to the terminal, and a copy of it is kept.
  to <- if (progress) paste("2>&1 >", shQuote(report), "| tee", shQuote(errors), ">&2; exit ${PIPESTATUS[0]}")
        else paste(">", shQuote(report), "2>", shQuote(errors))
  command <- paste("cd", shQuote(folder), "&&", shQuote(executable), if (progress) "--progress", to)
  status <- system2("bash", c("-c", shQuote(command)), stdin = "/dev/null")
  said <- readLines(errors, warn = FALSE)
  text <- readLines(report, warn = FALSE)
  if (status != 0) stop(runerror(folder, status, said, text))
  invisible(text)
}

# A condition of class runerror, with status, code (NA where none was told) and report.
runerror <- function(folder, status, said, report) {
  codes <- sub("^STOP ([0-9]+).*", "\\1", grep("^STOP [0-9]+", said, value = TRUE))
  code <- if (length(codes)) as.integer(utils::tail(codes, 1)) else NA_integer_
  errors <- trimws(grep("^ *ERROR", c(report, said), value = TRUE))
  rest <- trimws(report[nzchar(trimws(report))])
  message <- utils::tail(c("no message", rest, errors), 1)
  structure(class = c("runerror", "error", "condition"),
            list(message = paste0(folder, ": status ", status, if (!is.na(code)) paste0(", stop ", code), ": ", message),
                 call = NULL, status = status, code = code, report = report))
}

selectionmodel <- function(spec) {
  is <- function(key, word) identical(tolower(as.character(spec[[key]])), word)
  modelnames[1 + 2 * is("DistributionOfQtnOfSelectionTraits", "gamma") +
               is("SelectionBasedOnRestrictedOrUnrestrictedQtn", "restricted")]
}

account <- function(folder) {
  runfolder(folder)
  spec <- read_spec(folder)
  pedigree <- read_pedigree(folder)
  table <- with(read_variances(folder), data.table(generation = generation, trait = trait, model = as.character(model), mean = mean,
                                                   genetic_variance = genetic_additive, genic_variance = genic_additive))
  found <- read_accuracy(folder)
  if (tolower(spec$SelectionMethod) %in% c("gblup", "pedigreeblup")) found <- found[!found$last, ]
  at <- match(paste(table$generation, table$trait, table$model), paste(found$generation, found$trait, selectionmodel(spec)))
  set(table, j = "accuracy", value = found$accuracy[at])
  means <- tapply(inbreeding(pedigree), pedigree$generation, mean)
  set(table, j = "inbreeding", value = as.vector(means[as.character(table$generation)]))
  set(table, j = "coancestry", value = rep(NA_real_, nrow(table)))
  if (file.exists(file.path(folder, "SimulatedData/AverageCoancestry.txt"))) {
    before <- read_coancestry(folder)
    set(table, j = "coancestry", value = before$before[match(table$generation, before$generation)])
  }
  bred <- split(pedigree[, c("sire", "dam")], pedigree$generation)
  parents <- vapply(bred, function(rows) length(setdiff(c(rows$sire, rows$dam), 0)), 0)
  set(table, j = "parents", value = unname(parents[as.character(table$generation + 1)]))
  rows <- order(table$generation, table$trait, table$model, method = "radix")
  table[rows, ]
}
