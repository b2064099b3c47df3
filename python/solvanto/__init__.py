"""What runs of Solvanto leave, as numpy and pandas; specifications and runs.

    import solvanto
    values = solvanto.read_values("FOLDER")
    values.groupby(["generation", "trait", "model"])["tbv"].mean()
"""

from .errors import FolderError, RunError, SolvantoError, SpecificationError
from .genotypes import read_chip, read_genomes, read_map, read_phase, read_sequence, read_snp
from .runs import account, run, selectionmodel
from .specification import keys, read_spec, write_spec
from .tables import (
    inbreeding,
    read_accuracy,
    read_coancestry,
    read_pedigree,
    read_qtn,
    read_values,
    read_variances,
)

__all__ = [
    "FolderError", "RunError", "SolvantoError", "SpecificationError",
    "account", "inbreeding", "keys", "read_accuracy", "read_chip", "read_coancestry", "read_genomes", "read_map",
    "read_pedigree", "read_phase", "read_qtn", "read_sequence", "read_snp", "read_spec", "read_values",
    "read_variances", "run", "selectionmodel", "write_spec",
]
