"""The list of documents that clients do not take, held against what they really say."""

import collections
import os
import tomllib

_FIELDS = {"client", "model", "message", "documents", "reason"}


def parse(text):
    """The entries of a list. Throws ValueError for an entry that is incomplete."""
    entries = tomllib.loads(text).get("rejection", [])
    for entry in entries:
        if set(entry) != _FIELDS:
            raise ValueError(f"not the fields {sorted(_FIELDS)}: {sorted(entry)}")
        if not entry["documents"]:
            raise ValueError("an entry without documents")
    return entries


def read():
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "Rejections.toml")
    with open(path, encoding="utf-8") as file:
        return parse(file.read())


def differences(entries, client, model, findings):
    """Lines that say in what the findings of the client, pairs of document and message, differ from
    the entries for it; none when each finding has its entry and each entry its finding."""
    listed = collections.Counter(
        (document, entry["message"])
        for entry in entries if entry["client"] == client and entry["model"] == model
        for document in entry["documents"])
    found = collections.Counter(findings)
    return ([f"not in Rejections.toml: {client}: {document}: {message}"
             for document, message in sorted((found - listed).elements())]
            + [f"no longer so: {client}: {document}: {message}"
               for document, message in sorted((listed - found).elements())])


def check(test, client, model, findings):
    """Fails the test when findings and list differ."""
    lines = differences(read(), client, model.name, findings)
    shown = "\n".join(lines[:40])
    test.assertFalse(lines, f"{len(lines)} differences from Rejections.toml:\n{shown}")
