"""The exception for every error that the host reports."""


class Error(Exception):
    """An error of the host or of one of its objects.

    ``str(error)`` is the text of the message catalogue, with the arguments filled in.
    """

    __module__ = "orbel"

    identifier: str
    """The full message identifier: ``"Component:Identifier"``."""

    arguments: tuple[str | int | float, ...]
    """What the message mentions, in the order of the catalogue's placeholders."""

    def __init__(
        self, message: str, identifier: str, arguments: tuple[str | int | float, ...] = ()
    ) -> None:
        super().__init__(message, identifier, arguments)
        self.identifier = identifier
        self.arguments = arguments

    def __str__(self) -> str:
        return str(self.args[0])
