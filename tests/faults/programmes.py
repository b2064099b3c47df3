"""The small programmes that faults and kills act on: their folders, running them, comparing what they leave.

A programme is a folder that is ready for one run, "run" below the folder of a worker, with what it
needs beside it. Each worker has folders of its own, whose paths are equally long, since Pedigree.txt
holds the path of the run at a fixed width.
"""
import collections
import errno
import os
import pathlib
import re
import shutil
import subprocess
import tempfile

programs = ["solvanto", "macs", "Vintrecaskelle", "Quillomere", "QuillomereP", "Brenvask", "Corvalind"]
environment = {**os.environ, "OPENBLAS_NUM_THREADS": "1", "LC_ALL": "C"}
timelimit = 60  # seconds of a run; what takes longer hangs
seconds = re.compile(rb"(Time duration of Solvanto =|:) *[0-9.]+ (s\b|seconds)")


class outcome:
    """What a run left: status (None: it hung), standard output and error."""

    def __init__(self, status, out, err):
        self.status, self.out, self.err = status, out, err


class programme:
    """One run that faults and kills act on."""

    def __init__(self, name, program="solvanto", words=(), place=".", outputname=None, template=None):
        self.name = name
        self.template = template or name
        self.program = program  # the one that fails
        self.command = ["./solvanto", "--quiet"] if place == "." else ["./" + program, *words]
        self.place = place  # where the command is run, below the folder of the run
        self.outputname = outputname  # file for its standard output, if the tree needs it
        self.tree = self.report = self.messages = None  # of a run without faults

    def issystem(self):
        return self.place == "."


class campaign:
    """Programs, templates of folders, and workers' folders."""

    def __init__(self, bin, nworkers):
        self.bin = os.path.abspath(bin)
        self.workers = nworkers
        base = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="solvanto-campaign.", dir=base))
        self.spec = (pathlib.Path(__file__).parent / "SolvantoSpec.txt").read_text().splitlines()
        self.made = {}

    def remove(self):
        shutil.rmtree(self.folder, ignore_errors=True)

    def worker(self, n):
        return self.folder / f"w{n:02d}"

    # ------------------------------------------------------------------------ folders

    def specification(self, changes):
        lines = list(self.spec)
        for change in changes:
            key = change.split(",")[0].lower()
            at = [i for i, line in enumerate(lines) if line.split(",")[0].strip().lower() == key]
            if not at:
                raise ValueError("no line of the key " + key)
            lines[at[0]] = change
        return "\n".join(lines) + "\n"

    def prepare(self, folder, changes, seed):
        """A folder's programs, specification and seed."""
        folder.mkdir(parents=True, exist_ok=True)
        for program in programs:
            if not (folder / program).exists():
                (folder / program).symlink_to(os.path.join(self.bin, program))
        (folder / "SolvantoSpec.txt").write_text(self.specification(changes))
        (folder / "Seed.txt").write_text(f"{seed}\n")

    def mustrun(self, folder):
        result = run(["./solvanto", "--quiet"], folder, folder.parent / "standard output")
        if result.status != 0 or b"failure" in result.out:
            raise RuntimeError(f"{folder}: status {result.status}\n{result.out.decode()}{result.err.decode()}")

    def template(self, name):
        return self.folder / "templates" / name

    def maketemplates(self):
        """The folders "run" as they stand before each programme's run, and those beside it."""
        beside = self.folder / "beside"
        flexible = ["GenerationFlexibilityOnOff,On"]
        self.prepare(self.template("start"), flexible + ["StartStopGeneration,1,4"], -501)
        # A run that goes on with genomic prediction and optimal contributions: all companions but one.
        goon = self.template("goon")
        shutil.copytree(self.template("start"), goon, symlinks=True)
        self.mustrun(goon)
        last = flexible + ["StartStopGeneration,5,5", "SelectionMethod,GBlup",
                           "OptimalContributionSelectionOnOff,On"]
        self.prepare(goon, last, -502)
        # A merge of individuals of two replicates.
        burnin = beside / "burnin"
        self.prepare(burnin, flexible + ["StartStopGeneration,1,2"], -503)
        self.mustrun(burnin)
        for name, seed in [("first", -504), ("second", -505)]:
            shutil.copytree(burnin, beside / name, symlinks=True)
            self.prepare(beside / name, flexible + ["StartStopGeneration,3,4"], seed)
            self.mustrun(beside / name)
        merge = self.template("merge")
        self.prepare(merge, flexible + ["StartStopGeneration,3,4", "MergeTypes,Ids",
                                        "NumberOfMergeRuns,2", "MergeFiles,list.txt"], -506)
        # The list: where the replicates come from, then identifiers up to column 30, and folders.
        rows = [(20, "first"), (15, "first"), (9, "first"), (17, "second"), (12, "second"), (3, "second")]
        (merge / "list.txt").write_text("../burnin\n" + "".join(f"{id:30d}../{name}\n" for id, name in rows))
        for n in range(self.workers):
            shutil.copytree(beside, self.worker(n), symlinks=True)

    def cyclefolders(self):
        """Templates for the companions: folders that hold what a run gave them, not what they made of it."""
        done = self.template("goondone")
        shutil.copytree(self.template("goon"), done, symlinks=True)
        self.mustrun(done)
        pedigree = self.template("pedigreedone")
        shutil.copytree(self.template("goon"), pedigree, symlinks=True)
        self.prepare(pedigree, ["GenerationFlexibilityOnOff,On", "StartStopGeneration,5,5",
                                "SelectionMethod,PedigreeBlup"], -502)
        self.mustrun(pedigree)

    def fresh(self, prog, n):
        """The worker's folder as it stands before the programme's run."""
        folder = self.worker(n) / "run"
        shutil.rmtree(folder, ignore_errors=True)
        shutil.copytree(self.template(prog.template), folder, symlinks=True)
        return folder

    # ------------------------------------------------------------------------ comparing

    def readtree(self, folder, n):
        """Contents of all files below a folder by their paths, without what differs from run to run."""
        tree = {}
        own, common = b"/w%02d/" % n, b"/w00/"
        for place, folders, files in os.walk(folder):
            for name in folders:
                tree[os.path.relpath(os.path.join(place, name), folder)] = b"folder"
            for name in files:
                path = os.path.join(place, name)
                short = os.path.relpath(path, folder)
                if name in programs:
                    tree[short] = b"program"
                    continue
                with open(path, "rb") as file:
                    content = file.read()
                if own in content:
                    content = content.replace(own, common)
                tree[short] = withouttimes(content) if name.startswith("out") else content
        return tree

    def makereference(self, prog):
        """Runs the programme without faults; its outputs are taken out of its template."""
        if not prog.issystem():
            template = self.template(prog.template)
            source = "pedigreedone" if prog.program == "QuillomereP" else "goondone"
            shutil.copytree(self.template(source), template, symlinks=True)
            for path in template.rglob("*"):
                os.utime(path, (0, 0), follow_symlinks=False)
            self.runprogramme(prog, template)
            for path in list(template.rglob("*")):
                if path.is_file() and not path.is_symlink() and path.stat().st_mtime > 0:
                    path.unlink()
        folder = self.fresh(prog, 0)
        result = self.runprogramme(prog, folder)
        if result.status != 0:
            raise RuntimeError(f"{prog.name}: status {result.status}\n{result.err.decode()}")
        prog.tree = self.readtree(folder, 0)
        prog.report, prog.messages = withouttimes(result.out), result.err

    def runprogramme(self, prog, folder, extra=None):
        place = folder / prog.place
        result = run(prog.command, place, folder.parent / "standard output", extra)
        if prog.outputname:
            (place / prog.outputname).write_bytes(result.out)
            result.out = b""
        return result

    def repeat(self, prog, folder):
        """Runs again in a folder, with the seed of before, as the README tells."""
        if prog.issystem():
            seed = (self.template(prog.template) / "Seed.txt").read_bytes()
            if (folder / "Seed.txt").read_bytes() != seed:
                shutil.copyfile(folder / "SeedOld.txt", folder / "Seed.txt")
        return self.runprogramme(prog, folder)


def withouttimes(text):
    return seconds.sub(rb"\1 <time> \2", text)


def run(command, folder, report, extra=None):
    """Runs a command; report is the file that standard output goes to."""
    with open(report, "wb+") as out, tempfile.TemporaryFile() as err:
        child = None
        while child is None:
            try:
                child = subprocess.Popen(command, cwd=folder, stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                                         env={**environment, **(extra or {})}, start_new_session=True)
            except OSError as error:  # a process that another worker starts still holds the copy of a program open
                if error.errno != errno.ETXTBSY:
                    raise
        try:
            status = child.wait(timelimit)
        except subprocess.TimeoutExpired:
            os.killpg(child.pid, 9)
            child.wait()
            status = None
        out.seek(0)
        err.seek(0)
        return outcome(status, out.read(), err.read())


def differences(was, now):
    """Paths that differ between two trees."""
    return sorted(path for path in was.keys() | now.keys() if was.get(path) != now.get(path))


def show(title, columns, table):
    """Prints a table of counts, and their sums."""
    print("| " + " | ".join([title] + columns) + " |")
    print("|---" * (len(columns) + 1) + "|")
    for name, row in table.items():
        print("| " + " | ".join([name] + [str(row[column]) for column in columns]) + " |")
    if len(table) > 1:
        total = sum(table.values(), collections.Counter())
        print("| " + " | ".join(["all"] + [str(total[column]) for column in columns]) + " |")


def judgement(table, mustbenone, tries):
    """The status of a campaign: 1 if something happened that must not, or nothing was tried."""
    total = sum(table.values(), collections.Counter())
    bad = {mark: total[mark] for mark in mustbenone if total[mark]}
    if bad or not total[tries]:
        print("NOT AS IT MUST BE: " + (", ".join(f"{n} {mark}" for mark, n in bad.items()) or "nothing was tried"))
        return 1
    return 0


richspec = [
    "RecombinationOnOff,On", "NumberOfQtnPerChromForRecombination,10", "InitialRecombinationIndexWeight,0.5",
    "NumberGenerationsSelectionOnRecombination,2", "LaterGenRecombinationIndexWeight,0.1",
    "IncludeDominanceEffectsOnOff,On",
    "GeneEditingOnOff,On", "NumberOfEditedIndividuals,2", "NumberOfGeneEditsPerIndividual,2",
    "NumberOfQtnPerChromosomeNormalDist,6", "NumberOfQtnPerChromosomeGammaDist,0", "SelectionMethod,GBlup", "MinMaxAlleleFreqForModel2And4,0.4,0.5",
    "SelectionBasedOnRestrictedOrUnrestrictedQtn,Restricted",
    "FixTheTrainingDataAcrossGenerationsOnOff,On", "UseTrainingDataFromGeneration,3",
    "SelectionPhenotypingStrategy,AllHistoricalPhenotypes", "WriteFullSequenceOutOnOff,On",
    "GenerationFlexibilityOnOff,On"]


def goingon(folders):
    """Runs that read what earlier ones left, and what they leave without rubbish: a burn-in and a cycle
    that go on, most features of cycles at once, and a merge."""
    folders.maketemplates()
    made = [programme(name) for name in ["burnin", "rich", "goon", "merge"]]
    mutations = ["NumberOfMutationsPerChr,4", "MutationalVarianceProportion,0.1"]
    for name, changes, first, then in [("burnin", mutations, "1,1", "2,2"), ("rich", richspec, "1,4", "5,5")]:
        folder = folders.template(name)
        folders.prepare(folder, changes + ["StartStopGeneration," + first], -511)
        folders.mustrun(folder)
        folders.prepare(folder, changes + ["StartStopGeneration," + then], -512)
    for prog in made:
        folders.makereference(prog)
    return made


def allprogrammes(folders):
    """The programmes of the campaign, their folders and what they leave without faults. The companions
    run alone on what goon gave them, and once more within its run, which has to see them fail."""
    folders.maketemplates()
    folders.cyclefolders()
    cycle = "Selection/SelectionFolder3"
    chromosome = "Chromosomes/Chromosome1"
    output = (folders.template("goondone") / chromosome / "output.txt").read_text()
    macswords = output.splitlines()[0].split()[2:]
    made = [programme("start"), programme("goon"), programme("merge")]
    made += [
        programme("macs", "macs", macswords, chromosome, "output.txt"),
        programme("Vintrecaskelle", "Vintrecaskelle", ["40"], chromosome),
        programme("Quillomere", "Quillomere", [], cycle),
        programme("QuillomereP", "QuillomereP", [], cycle),
        programme("Brenvask", "Brenvask", [], cycle),
        programme("Corvalind", "Corvalind", [], cycle),
    ]
    within = [("macs", "start"), ("Vintrecaskelle", "start"), ("Quillomere", "goon"),
              ("Brenvask", "goon"), ("Corvalind", "goon")]
    made += [programme(f"{program} in {place}", program, template=place) for program, place in within]
    for prog in made:
        folders.makereference(prog)
    return made
