# Genotypes of a run: chips, packed genomes, sequence.

nochip <- function(chip) paste0("chip ", chip, " must be one of NumberOfSnpChips, with UseSnpChipOnOff On")

# Names of the rows of an individual's two gametes.
gametes <- function(individuals) paste0(rep(individuals, each = 2), ".", 1:2)

read_chip <- function(folder, chip = 1, generations = NULL) {
  runfolder(folder)
  file <- findfile(folder, paste0("SimulatedData/AllIndividualsSnpChips/Chip", chip, "Genotype.txt"), nochip(chip))
  rows <- read_rows(folder, file, 1, generations)
  dimnames(rows$alleles) <- list(individual = rows$identifiers, snp = NULL)
  rows$alleles
}

read_phase <- function(folder, chip = 1, generations = NULL) {
  runfolder(folder)
  file <- findfile(folder, paste0("SimulatedData/AllIndividualsSnpChips/Chip", chip, "Phase.txt"), nochip(chip))
  rows <- read_rows(folder, file, 2, generations)
  dimnames(rows$alleles) <- list(gamete = gametes(rows$identifiers[c(TRUE, FALSE)]), snp = NULL)
  rows$alleles
}

read_snp <- function(folder, chip = 1) {
  runfolder(folder)
  file <- findfile(folder, paste0("SimulatedData/Chip", chip, "SnpInformation.txt"), nochip(chip))
  table <- as.data.table(fixed(file, rep(20, 5)))
  integers(setnames(table, c("snp", "chromosome", "site", "maf", "position")), c("snp", "chromosome", "site"))
}

# Identifiers and alleles of the rows of I20, one I2 for each site: nlines rows for each individual.
# title: bytes before the first row; first, ncol: sites that are left out before, and taken (NULL: all).
read_rows <- function(folder, file, nlines, generations, title = 0, first = 0, ncol = NULL) {
  bytes <- if (ispacked(file)) readbytes(file)
  total <- if (ispacked(file)) length(bytes) else file.size(file)
  if (total <= title) refuse(file, ": is empty; was the run cut short?")
  width <- rowwidth(file, bytes, title, total)
  nsites <- (width - 21) / 2
  if (nsites < 0 || nsites != floor(nsites)) cutfile(file, 1)
  nrows <- (total - title) / width
  if (nrows != floor(nrows) || nrows %% nlines) cutfile(file, floor(nrows) + 1)
  generation <- wholegenerations(folder, file, nrows / nlines)
  wanted <- if (is.null(generations)) unique(generation) else sort(unique(generations))
  if (any(!wanted %in% generation))
    refuse(file, ": holds no generation ", setdiff(wanted, generation)[1], ", but 1 to ", max(generation))
  # Generations that follow one another are read in one piece.
  places <- range_of(which(generation %in% wanted), nlines)
  parts <- lapply(places, function(place) {
    arguments <- list(as.double(title + (place[1] - 1) * width), as.double(place[2] - place[1] + 1), as.double(width),
                      as.double(first), as.double(if (is.null(ncol)) nsites else ncol), PACKAGE = "solvanto")
    part <- if (ispacked(file)) do.call(.Call, c(list("rowsofbytes", bytes), arguments))
            else do.call(.Call, c(list("rowsoffile", path.expand(file)), arguments))
    if (part[[3]] == 1) refuse(file, ": is cut; was the run cut short?")
    if (part[[3]] == 2) refuse(file, ": holds something else than genotypes 0, 1, 2")
    part
  })
  if (length(parts) == 1) return(list(identifiers = parts[[1]][[1]], alleles = parts[[1]][[2]]))
  list(identifiers = unlist(lapply(parts, `[[`, 1)), alleles = do.call(rbind, lapply(parts, `[[`, 2)))
}

rowwidth <- function(file, bytes, title, total) {
  if (!is.null(bytes)) return(match(as.raw(10), if (title > 0) bytes[-seq_len(title)] else bytes, nomatch = 0))
  stream <- file(file, "rb")
  on.exit(close(stream))
  seek(stream, title)
  nchar(readLines(stream, 1, warn = FALSE), "bytes") + 1
}

# First and last row of each run of neighbours among individuals.
range_of <- function(individuals, nlines) {
  breaks <- which(diff(individuals) != 1)
  firsts <- individuals[c(1, breaks + 1)]
  lasts <- individuals[c(breaks, length(individuals))]
  Map(function(a, b) c((a - 1) * nlines + 1, b * nlines), firsts, lasts)
}

read_genomes <- function(folder, chromosome, generation) {
  runfolder(folder)
  file <- findfile(folder, paste0("Chromosomes/Chromosome", chromosome, "/GenomeGeneration", generation, ".txt"),
                   "set KeepChromosomesFolderYesNo to Yes")
  sizes <- generationsizes(folder)
  if (!generation %in% seq_along(sizes)) refuse(folder, ": holds no generation ", generation, ", but 1 to ", length(sizes))
  n <- sizes[generation]
  record <- framedrecord(file)
  if (length(record) == 0 || length(record) %% (16 * n)) refuse(file, ": its length doesn't fit ", n, " individuals")
  alleles <- .Call("unpackgenomes", record, as.double(n), PACKAGE = "solvanto")
  if (is.null(alleles)) refuse(file, ": holds blocks that were never made; was the run cut short?")
  array(alleles, c(n, 2, length(alleles) / (2 * n)))
}

# A record framed by its length before and behind; a negative length in front says that another frame goes
# on with it.
framedrecord <- function(file) {
  content <- readbytes(file)
  whole <- function(at) if (at + 3 <= length(content)) readBin(content[at:(at + 3)], "integer", endian = "little") else NA
  parts <- list()
  at <- 1
  repeat {
    size <- whole(at)
    end <- at + 4 + abs(size)
    if (is.na(size) || is.na(whole(end)) || abs(whole(end)) != abs(size)) refuse(file, ": is cut; was the run cut short?")
    parts[[length(parts) + 1]] <- if (size == 0) raw() else content[(at + 4):(end - 1)]
    at <- end + 4
    if (size >= 0) break
  }
  if (at != length(content) + 1) refuse(file, ": holds more than its record")
  do.call(c, parts)
}

read_map <- function(folder, chromosome) {
  runfolder(folder)
  own <- file.path(folder, paste0("Chromosomes/Chromosome", chromosome, "/PhysicalMapIncluded.txt"))
  if (file.exists(own)) {
    table <- fixed(own, c(10, 10, 20, 10, 10), titles = 0)
    return(data.table(site = as.integer(table[, 1]), position = table[, 3]))
  }
  file <- findfile(folder, "SimulatedData/FullSequencePhysicalMapIncluded.txt",
                   "set KeepChromosomesFolderYesNo or WriteFullSequenceOutOnOff to have the sites kept")
  rows <- do.call(rbind, lapply(words_of(file), exact))
  rows <- rows[rows[, 1] == chromosome, , drop = FALSE]
  if (nrow(rows) == 0) refuse(folder, ": there is no chromosome ", chromosome)
  data.table(site = as.integer(rows[, 2]), position = rows[, 3])
}

read_sequence <- function(folder, chromosome, start = 0, end = 1, generations = NULL, phased = FALSE) {
  sites <- read_map(folder, chromosome)
  numbers <- sites$site[sites$position >= start & sites$position <= end]
  sizes <- generationsizes(folder)
  wanted <- if (is.null(generations)) seq_along(sizes) else sort(unique(generations))
  if (!dir.exists(file.path(folder, paste0("Chromosomes/Chromosome", chromosome))))
    return(sequencefromtext(folder, chromosome, numbers, wanted, phased))
  ends <- cumsum(sizes)
  parts <- lapply(wanted, function(g) {
    alleles <- read_genomes(folder, chromosome, g)[, , numbers, drop = FALSE]
    if (!phased) return(apply(alleles, c(1, 3), sum))
    matrix(aperm(alleles, c(2, 1, 3)), 2 * dim(alleles)[1])
  })
  individuals <- unlist(lapply(wanted, function(g) ends[g] - sizes[g] + seq_len(sizes[g])))
  alleles <- do.call(rbind, parts)
  storage.mode(alleles) <- "integer"
  namesequence(alleles, individuals, numbers, phased)
}

namesequence <- function(alleles, individuals, numbers, phased) {
  dimnames(alleles) <- if (phased) list(gamete = gametes(individuals), site = numbers)
                       else list(individual = individuals, site = numbers)
  alleles
}

sequencefromtext <- function(folder, chromosome, numbers, wanted, phased) {
  name <- paste0("SimulatedData/FullSequence", if (phased) "Phase" else "Genotype", ".txt")
  file <- findfile(folder, name, "set WriteFullSequenceOutOnOff to On")
  included <- vapply(words_of(findfile(folder, "SimulatedData/NbOfSegSitesPerChrom.txt"), 1), function(row) as.numeric(row[3]), 0)
  before <- sum(included[seq_len(chromosome - 1)]) + if (length(numbers)) numbers[1] - 1 else 0
  rows <- read_rows(folder, file, if (phased) 2 else 1, wanted, title = 51, first = before, ncol = length(numbers))
  individuals <- if (phased) rows$identifiers[c(TRUE, FALSE)] else rows$identifiers
  namesequence(rows$alleles, individuals, numbers, phased)
}
