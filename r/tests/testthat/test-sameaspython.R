# Both packages give the same tables of the same runs, to the last bit. Python's come as text with as many
# digits as a double has.
python <- function(folder, expression) {
  out <- tempfile()
  code <- paste0("import solvanto as s; f = ", deparse(folder), "; s_ = ", expression, "; s_.to_csv(", deparse(out),
                 ", sep='\\t', index=False, float_format='%.17g', na_rep='NA')")
  status <- system2("/usr/bin/python3", c("-c", shQuote(code)), env = paste0("PYTHONPATH=", file.path(root, "python")))
  stopifnot(status == 0)
  read.delim(out, colClasses = "character", check.names = FALSE)
}

text <- function(column) {
  if (is.logical(column)) return(ifelse(column, "True", "False"))
  if (is.numeric(column)) return(ifelse(is.na(column), NA, sprintf("%.17g", column)))
  as.character(column)
}

expect_same <- function(folder, mine, expression) {
  theirs <- python(folder, expression)
  mine <- as.data.frame(mine)
  expect_identical(names(mine), names(theirs))
  for (name in names(theirs)) {
    other <- theirs[[name]]
    if (is.double(mine[[name]])) other <- text(solvanto:::exact(ifelse(is.na(other), "", other)))
    expect_identical(text(mine[[name]]), other, label = paste(folder, expression, name))
  }
}

test_that("tables are the same", {
  for (name in c("twotraits", "optimalcontributions", "externalpedigree", "merging")) {
    folder <- example(name)
    for (reader in c("read_pedigree", "read_values", "read_accuracy", "read_variances", "read_qtn", "read_snp", "account"))
      expect_same(folder, get(reader)(folder), paste0("s.", reader, "(f)"))
    expect_same(folder, read_qtn(folder, "restricted"), "s.read_qtn(f, 'restricted')")
    expect_same(folder, read_map(folder, 2), "s.read_map(f, 2)")
  }
  expect_same(example("optimalcontributions"), read_coancestry(example("optimalcontributions")), "s.read_coancestry(f)")
})

test_that("genotypes are the same", {
  for (name in c("twotraits", "externalpedigree")) {
    folder <- example(name)
    same <- function(mine, expression) {
      theirs <- as.matrix(python(folder, expression))
      expect_identical(unname(dim(mine)), unname(dim(theirs)))
      expect_true(all(as.vector(mine) == as.integer(theirs)), label = paste(folder, expression))
    }
    same(read_chip(folder, 2), "s.read_chip(f, 2)")
    same(read_phase(folder, 1, c(1, 3)), "s.read_phase(f, 1, [1, 3])")
    for (gone in c(FALSE, TRUE)) {
      if (gone && name == "twotraits") next
      if (gone) {
        folder <- copied(name)
        unlink(file.path(folder, "Chromosomes"), recursive = TRUE)
      }
      for (phased in c("False", "True"))
        same(read_sequence(folder, 2, 0.5, 0.6, c(2, 4), phased == "True"),
             paste0("s.read_sequence(f, 2, 0.5, 0.6, [2, 4], ", phased, ")"))
    }
  }
  expect_identical(rownames(read_phase(example("twotraits"), 1, 2))[1:3], c("101.1", "101.2", "102.1"))
})
