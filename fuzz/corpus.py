"""The inputs that fuzzing begins with: files of the examples and of the small programmes of
tests/faults, and a few written here, where a fuzzer wants smaller ones than a run leaves.

usage: corpus.py BIN FOLDER
"""
import pathlib
import shutil
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(root / "tests" / "faults"))
import programmes

mark = "%%%\n"  # between the files of one input
genotypes = "1 0 1 2 0\n2 1 1 0 9\n3 2 0 0 1\n"
values = "1 0.5\n2 -1.25\n3 3e-1\n"


class corpus:
    def __init__(self, folder):
        self.folder = folder
        self.n = 0

    def put(self, fuzzer, *files):
        self.n += 1
        folder = self.folder / fuzzer
        folder.mkdir(parents=True, exist_ok=True)
        texts = [file.read_text() if isinstance(file, pathlib.Path) else file for file in files]
        (folder / f"{self.n:03d}").write_bytes(mark.join(texts).encode())

    def putbytes(self, fuzzer, content):
        self.n += 1
        folder = self.folder / fuzzer
        folder.mkdir(parents=True, exist_ok=True)
        (folder / f"{self.n:03d}").write_bytes(content)


def ofexamples(made):
    for spec in sorted((root / "examples").glob("*/*.txt")):
        if spec.name.startswith("SolvantoSpec"):
            made.put("specification", spec)
    made.put("specification", root / "tests" / "faults" / "SolvantoSpec.txt")
    pedigree = (root / "examples" / "externalpedigree" / "Pedigree.csv").read_text().splitlines()
    made.put("pedigree", "", "", "", "\n".join(pedigree[:28]) + "\n", "")


def ofruns(made, bin):
    folders = programmes.campaign(bin, 1)
    try:
        folders.maketemplates()
        folders.cyclefolders()
        done, pedigree = folders.template("goondone"), folders.template("pedigreedone")
        cycle = done / "Selection" / "SelectionFolder3"
        data = done / "SimulatedData"
        made.put("pedigree", data / "Pedigree.txt", data / "Gender.txt", data / "NbOfIndivInEachGen.txt", "",
                 "".join(f"{29 + i} {1 + i} {15 + i}\n" for i in range(14)))
        made.put("quillomere", cycle / "QuillomereSpec.txt", genotypes, values, "1\n1\n0\n1\n", genotypes, values)
        made.put("brenvask", cycle / "BrenvaskSpec.txt", genotypes)
        matrix = "".join(f"{i} " + " ".join("1.0" if i == j else "0.125" for j in range(1, 5)) + "\n"
                         for i in range(1, 5))
        made.put("corvalind", cycle / "CorvalindSpec.txt", matrix, values + "4 0\n", "1 1\n2 2\n3 1\n4 2\n")
        other = pedigree / "Selection" / "SelectionFolder3"
        lines = "1 0 0 1 0.5\n2 0 0 1 -99\n3 1 2 1 1.5\n4 3 3 2 2\n"
        made.put("quillomerep", other / "DataFormatParameters.txt", lines)
        genome = (done / "Chromosomes" / "Chromosome1" / "GenomeGeneration1.txt").read_bytes()
        made.putbytes("framereader", (len(genome) % 65536).to_bytes(2, "little") + genome)
        for kind, name in enumerate(["NbOfIndivInEachGen.txt", "Pedigree.txt", "Gender.txt"]):
            made.putbytes("infile", bytes([kind]) + (data / name).read_bytes()[:2000])
        made.putbytes("infile", bytes([4]) + (cycle / "TmpChip1GenotypeTest.txt").read_bytes()[:2000])
        command = ["./macs", "4", "100000", "-t", "0.0001", "-r", "0.0001", "-s", "7"]
        out = subprocess.run(command, cwd=done, check=True, capture_output=True, text=True).stdout
        made.put("formatter", out)
        made.put("macsoptions", "\n".join(command[1:]))
    finally:
        folders.remove()


def writtenhere(made):
    made.putbytes("framereader", b"\x04\0" + b"\x04\0\0\0" + b"abcd" + b"\x04\0\0\0")
    made.putbytes("framereader", b"\x04\0" + b"\xfe\xff\xff\xff" + b"ab" + b"\x02\0\0\0" +
                  b"\x02\0\0\0" + b"cd" + b"\xfe\xff\xff\xff")
    made.putbytes("infile", b"\3" + b"%20.10f%20.10f%20.10f\n" % (0.5, -1.25, 1e9))
    made.put("hotspots", "0 0.25 0.5\n0.3,0.5,0.25\n0.6\t1.0\t0.25\n", "0 0.25 2\n0.5 1 0.5\n")
    made.put("hotspots", "0 1 1\n", "  0.00000000  0.25000000100.00000000\n")
    header = ("##fileformat=VCFv4.3\n##contig=<ID=1,length=1000>\n##FORMAT=<ID=GT,Number=1,Type=String,Description=\"GT\">\n"
              "#CHROM\tPOS\tID\tREF\tALT\tQUAL\tFILTER\tINFO\tFORMAT\ta\tb\tc\n")
    sites = "".join(f"1\t{p}\t.\tA\t{alt}\t.\tPASS\t.\tGT\t{gt}\n" for p, alt, gt in
                    [(10, "T", "0|1\t1|0\t0|0"), (400, "T", "1|1\t.|0\t0/1"), (900, "T,C", "0|2\t1|0\t0|0"),
                     (950, "T", "0|1\t1|0\t1|1")])
    made.put("foundersfromvcf", "", header + sites)
    made.put("foundersfromvcf", "file Founders.vcf.gz\ncontig 1 1\nfirst\n--skip\n", header + sites.split("\n")[0] + "\n")
    made.put("clusters", "0 0.25 0.5\n0.5 0.75 0.25\n0.8 1.0 0.25\n")
    made.put("history", "-eN 0.1 0.5 -eN 1.0 2.0\n")
    made.put("solutions", "1\n1\n0\n1\n1\n0\n", "1 0.5\n2 0.25\n4 0.75\n5 1\n",
             "".join(f"{i} 0.{i}\n" for i in range(1, 7)), "1 0 1 2 0 1 2\n2 0 1 2 9 1 2\n3 2 2 2 0 0 0\n")
    made.put("merges", "source\n" + f"{2:30d}source\n{3:30d}source\n",
             " Gen     nIndivInThisGen       nMalInThisGen       nFemInThisGen\n   1 2 1 1\n   2 2 1 1\n", "title\n" +
             "".join(f"{g:20d}{i:20d}{i:20d}{s:20d}{d:20d} path\n" for g, i, s, d in
                     [(1, 1, 0, 0), (1, 2, 0, 0), (2, 3, 1, 2), (2, 4, 1, 2)]))
    made.put("storedtables", "60\n", "20 1 20\n", "7 2 1 1 7\n", "1 0\n2 1\n3 0\n",
             "".join(f"{i} {i + 1} 0.{i} 0 0\n" for i in range(1, 5)),
             "".join(f"{i} {7 * i} 0.25 0.{i}\n" for i in range(1, 5)),
             "title\n" + "".join(f"1 {i} 0 0" + " 0.5 -1.25 3.0 NaN" * 3 + "\n" for i in range(1, 4)),
             "1 0 2\n2 1 0\n3 4 4\n")
    made.put("macsoptions", "100\n1e6\n-t\n0.1\n-r\n0.2\n-eN\n0.1\n0.5\n-eN\n1\n2\n-h\n1\n-i\n2\n-s\n1")


def main():
    bin, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    shutil.rmtree(folder, ignore_errors=True)
    made = corpus(folder)
    ofexamples(made)
    ofruns(made, bin)
    writtenhere(made)
    for kept in sorted((root / "fuzz" / "found").glob("*/*")):  # what once was found stays in
        made.putbytes(kept.parent.name, kept.read_bytes())


if __name__ == "__main__":
    main()
