#!/usr/bin/env Rscript
# Prediction with weighted SNPs, in the place of Quillomere: SNP-BLUP, and once more with SNPs weighted by
# their squared solutions (Wang and others 2012, Genet. Res. 94: 73-83). It works in the folder of a cycle.
if (length(commandArgs(TRUE))) { # --version, when a run is checked
  message("prediction.R reads QuillomereSpec.txt and takes no arguments")
  quit(status = 2)
}
lines <- strsplit(readLines("QuillomereSpec.txt"), ",")
spec <- setNames(trimws(sapply(lines, `[`, 2)), trimws(sapply(lines, `[`, 1)))
table <- function(key) as.matrix(read.table(spec[[key]]))
vara <- as.numeric(spec[["VarA"]])
vare <- as.numeric(spec[["VarE"]])

training <- table("GenotypeTraining")
testing <- table("GenotypeTesting")
y <- table("PhenotypeTraining")[, 2]
tbv <- table("TbvTesting")[, 2]
p <- colMeans(training[, -1]) / 2
varies <- p > 0 & p < 1
scale <- ifelse(varies, 1 / sqrt(2 * p * (1 - p) + 1e-5), 0)
scaled <- function(genotypes) sweep(sweep(genotypes, 2, 2 * p), 2, scale, "*")
z <- scaled(training[, -1])
weight <- varies / sum(varies) # shares of the additive variance
for (round in 1:2) {
  v <- vara * sweep(z, 2, weight, "*") %*% t(z) + diag(vare, length(y))
  u <- as.vector(vara * weight * crossprod(z, solve(v, y - mean(y))))
  weight <- u^2 / sum(u^2)
}
ebv <- as.vector(scaled(testing[, -1]) %*% u)

write <- function(name, numbers, values) writeLines(sprintf("%20.0f %.15g", numbers, values), name)
write("Ebv.txt", testing[, 1], ebv)
write("SnpSolutions.txt", seq_along(u), u)
write("AlleleFreq.txt", which(varies), p[varies])
writeLines(sprintf(" %.15g", cor(tbv, ebv)), "TbvEbvCorrelation.txt")
cat(length(y), "training individuals,", length(u), "SNPs, correlation", round(cor(tbv, ebv), 4), "\n")
