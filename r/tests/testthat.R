library(testthat)
library(solvanto)
test_check("solvanto")
