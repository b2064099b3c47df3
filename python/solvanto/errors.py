"""What goes wrong, as exceptions."""


class SolvantoError(Exception):
    """Anything that this package refuses."""


class FolderError(SolvantoError):
    """A run folder, or a file in it, that isn't as a finished run leaves it."""


class SpecificationError(SolvantoError):
    """A specification that can't be read or written."""


class RunError(SolvantoError):
    """A run that did not come to its end.

    status: exit status of the program; code: its stop code, None where it told none; message: what the
    program said; report: its standard output.
    """

    def __init__(self, folder: str, status: int, code: int | None, message: str, report: str):
        super().__init__(f"{folder}: status {status}{f', stop {code}' if code is not None else ''}: {message}")
        self.status = status
        self.code = code
        self.message = message
        self.report = report
