"""What can go wrong, each with a text that says what, where and what to do."""


class TavrixError(Exception):
    """Any of the errors below."""


class NoServer(TavrixError):
    """No simulator with the plug-in was found, or it did not answer."""


class Refused(TavrixError):
    """The server ended the connection at once: its user has restricted it."""


class Disconnected(TavrixError):
    """The connection is gone for the moment; the client tries to get it back by itself."""


class NotWritable(TavrixError):
    """A write to this offset has no effect."""


class NotConfirmed(TavrixError):
    """The server does not show what was written within the time given."""
