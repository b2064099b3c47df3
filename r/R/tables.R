# Tables of a run: pedigree, values, accuracy, variances, QTN, coancestry.

modelnames <- c("NormalUnrestr", "NormalRestr", "GammaUnrestr", "GammaRestr")

read_pedigree <- function(folder) {
  runfolder(folder)
  file <- findfile(folder, "SimulatedData/Pedigree.txt")
  numbers <- fixed(file, rep(20, 5))
  # A merge of individuals leaves rows of four columns: generation, number, sire, dam.
  short <- is.na(numbers[, 5])
  numbers[short, 3:5] <- numbers[short, 2:4]
  if (any(numbers[, 3] != seq_len(nrow(numbers)))) refuse(file, ": individuals are not numbered from 1 on")
  genders <- fixed(findfile(folder, "SimulatedData/Gender.txt"), rep(20, 3))[, 3]
  if (length(genders) != nrow(numbers))
    refuse(folder, ": Pedigree.txt and Gender.txt hold different individuals; was the run cut short?")
  data.table(generation = as.integer(numbers[, 1]), individual = as.integer(numbers[, 3]),
             sire = as.integer(numbers[, 4]), dam = as.integer(numbers[, 5]), gender = as.integer(genders),
             external = as.integer(numbers[, 2]))
}

# Numbers of traits and QTN models, by the table of means, in which all of a generation stand.
dimensions <- function(folder) {
  means <- fixed(findfile(folder, "SimulatedData/GeneticMeansPerGeneration.txt"), rep(20, 4))
  if (nrow(means) == 0) refuse(folder, ": holds no values yet; was the run cut short?")
  list(ntraits = max(means[, 3]), nmodels = max(means[, 2]), means = means)
}

read_values <- function(folder) {
  runfolder(folder)
  size <- dimensions(folder)
  n <- size$ntraits * size$nmodels
  file <- findfile(folder, "SimulatedData/PedigreeTbvTdvTpv.txt")
  table <- fixed(file, c(rep(10, 4), rep(20, 3 * n)))
  wholegenerations(folder, file, nrow(table))
  if (anyNA(table[, ncol(table)])) refuse(file, ": rows of fewer than ", 4 + 3 * n, " columns")
  block <- function(k) as.vector(t(table[, 4 + (k - 1) * n + seq_len(n), drop = FALSE]))
  column <- rep(seq_len(n) - 1, nrow(table))
  data.table(individual = rep(as.integer(table[, 2]), each = n), generation = rep(as.integer(table[, 1]), each = n),
             trait = as.integer(column %/% size$nmodels + 1),
             model = factor(modelnames[column %% size$nmodels + 1], modelnames[seq_len(size$nmodels)]),
             tbv = block(1), tdv = block(2), tpv = block(3))
}

read_accuracy <- function(folder) {
  runfolder(folder)
  burnin <- as.integer(read_spec(folder)$NumberGenerationsBurnIn)
  files <- list.files(file.path(folder, "Selection"), "^AccuracyOfBreedingValueSelectionCycle[0-9]+[.]txt$")
  cycles <- sort(as.integer(sub(".*Cycle([0-9]+)[.]txt", "\\1", files)))
  rows <- lapply(cycles, function(cycle) {
    file <- file.path(folder, "Selection", paste0("AccuracyOfBreedingValueSelectionCycle", cycle, ".txt"))
    values <- accuracies(file)
    last <- !dir.exists(file.path(folder, "Selection", paste0("SelectionFolder", cycle)))
    data.table(cycle = cycle, generation = burnin + cycle - 1L, values, last = last)
  })
  if (length(rows)) return(rbindlist(rows))
  data.table(cycle = integer(), generation = integer(), trait = integer(), accuracy = numeric(), mean = numeric(),
             variance = numeric(), last = logical())
}

# Trait, accuracy, mean and variance, of each line of a cycle's file.
accuracies <- function(file) {
  words <- words_of(file)
  if (length(words) < 2) cutfile(file, 2)
  rows <- lapply(words[-1], exact)
  pick <- function(trait, row, at) data.table(trait = as.integer(trait), accuracy = row[at[1]], mean = row[at[2]], variance = row[at[3]])
  if (words[[1]][1] == "Trait") return(rbindlist(lapply(rows, function(row) pick(row[1], row, 2:4))))
  if (length(rows[[1]]) == 3) return(pick(1, rows[[1]], 1:3))
  # With the recombination trait: both accuracies, both means, the expected crossings, both variances.
  rbind(pick(1, rows[[1]], c(1, 3, 6)), pick(0, rows[[1]], c(2, 4, 7)))
}

read_variances <- function(folder) {
  runfolder(folder)
  size <- dimensions(folder)
  n <- size$ntraits
  table <- fixed(findfile(folder, "SimulatedData/TotalGenicAndGeneticVariancesPerGeneration.txt"), c(10, 10, rep(20, 4 * n)))
  if (nrow(size$means) != nrow(table) * n || nrow(table) %% size$nmodels)
    refuse(folder, ": means and variances are of different generations; was the run cut short?")
  missing <- is.na(table[, ncol(table)])
  table[missing, -(1:2)] <- NA
  means <- size$means
  key <- paste(means[, 1], means[, 2], means[, 3])
  generation <- rep(table[, 1], each = n)
  model <- rep(table[, 2], each = n)
  trait <- rep(seq_len(n), nrow(table))
  mean <- means[match(paste(generation, model, trait), key), 4]
  mean[rep(missing, each = n)] <- NA
  block <- function(k) as.vector(t(table[, 2 + (k - 1) * n + seq_len(n), drop = FALSE]))
  data.table(generation = as.integer(generation), model = factor(modelnames[model], modelnames[seq_len(size$nmodels)]),
             trait = as.integer(trait), mean = mean, genic_additive = block(1), genic_dominance = block(2),
             genetic_additive = block(3), genetic_dominance = block(4))
}

integers <- function(table, names) table[, (names) := lapply(.SD, as.integer), .SDcols = names][]

read_qtn <- function(folder, set = "unrestricted") {
  runfolder(folder)
  if (!set %in% c("unrestricted", "restricted", "recombination"))
    refuse(set, ": the sets of QTN are unrestricted, restricted and recombination")
  first <- c("qtn", "chromosome", "site")
  if (set == "recombination") {
    file <- findfile(folder, "SimulatedData/RecombinationQtnInformationEffects.txt", "set RecombinationOnOff to On")
    table <- as.data.table(fixed(file, c(10, 10, 10, rep(20, 4))))
    return(integers(setnames(table, c(first, "maf", "frequency", "position", "effect")), first))
  }
  name <- paste0("SimulatedData/", toupper(substr(set, 1, 1)), substring(set, 2), "Qtn")
  file <- findfile(folder, paste0(name, "Information.txt"))
  # A merge widens the first three columns.
  width <- if (max(0, nchar(lines_of(file))) > 130) 20 else 10
  table <- as.data.table(fixed(file, c(rep(width, 3), rep(20, 5))))
  integers(setnames(table, c(first, "maf", "frequency", "position", "mutation", "carrier")), c(first, "mutation", "carrier"))
  size <- dimensions(folder)
  distributions <- if (size$nmodels == 4) c("normal", "gamma") else "normal"
  kinds <- list(Addit = "additive", Domin = c("dominance", "degree"), AverAlleleSubst = "substitution")
  for (kind in names(kinds)) {
    effects <- paste0(name, kind, "Effects.txt")
    if (kind != "Addit" && !file.exists(file.path(folder, effects))) next
    columns <- as.vector(outer(seq_len(size$ntraits), as.vector(outer(distributions, kinds[[kind]], function(d, b) paste0(b, "_", d))),
                               function(t, b) paste0(b, "_", t)))
    values <- fixed(findfile(folder, effects), c(10, 10, 10, rep(20, length(columns))))
    if (nrow(values) != nrow(table)) refuse(effects, ": ", nrow(values), " QTN, and ", nrow(table), " in ", file)
    table <- cbind(table, setnames(as.data.table(values[, -(1:3), drop = FALSE]), columns))
  }
  table
}

read_coancestry <- function(folder) {
  runfolder(folder)
  file <- findfile(folder, "SimulatedData/AverageCoancestry.txt", "set ComputeAverageCoancestryYesNo to Yes")
  rows <- do.call(rbind, words_of(file, titles = 1))
  value <- function(k) exact(rows[, k])
  data.table(generation = as.integer(value(1)), cycle = as.integer(ifelse(rows[, 2] == "-", 0, rows[, 2])), before = value(3), after = value(4))
}

# Method of Meuwissen and Luo (1992), Genet. Sel. Evol. 24: 305-313; families are worked out once.
inbreeding <- function(pedigree) {
  sire <- pedigree$sire
  dam <- pedigree$dam
  n <- length(sire)
  if (any(sire >= seq_len(n)) || any(dam >= seq_len(n))) refuse("the pedigree has parents that stand behind their progeny")
  f <- numeric(n)
  d <- numeric(n)
  of <- function(parent) if (parent == 0) -1 else f[parent]
  family <- new.env()
  for (i in seq_len(n)) {
    s <- sire[i]
    t <- dam[i]
    d[i] <- 0.5 - 0.25 * (of(s) + of(t))
    if (s == 0 || t == 0) next
    key <- paste(min(s, t), max(s, t))
    known <- family[[key]]
    if (is.null(known)) {
      share <- numeric(i)
      share[i] <- 1
      sum <- 0
      for (j in i:1) {
        if (share[j] == 0) next
        sum <- sum + share[j]^2 * d[j]
        if (sire[j] > 0) share[sire[j]] <- share[sire[j]] + 0.5 * share[j]
        if (dam[j] > 0) share[dam[j]] <- share[dam[j]] + 0.5 * share[j]
      }
      known <- family[[key]] <- sum - 1
    }
    f[i] <- known
  }
  f
}
