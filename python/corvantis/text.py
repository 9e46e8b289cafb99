"""Texts of the data file, whose character encoding is not recorded."""


def decode(text: bytes) -> str:
    """UTF-8 where the bytes are that, else Mac OS Roman, in which every byte is a character."""
    try:
        return text.decode("utf-8")
    except UnicodeDecodeError:
        return text.decode("mac_roman")
