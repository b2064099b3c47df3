"""python3 -m solvanto FOLDER: the account of a run on standard output, tabs between its columns."""

import sys

from . import SolvantoError, account


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: python3 -m solvanto FOLDER", file=sys.stderr)
        return 2
    try:
        account(sys.argv[1]).to_csv(sys.stdout, sep="\t", index=False, float_format="%.10g")
    except SolvantoError as error:
        print(f"ERROR: {error}", file=sys.stderr)
        return 2
    return 0


sys.exit(main())
