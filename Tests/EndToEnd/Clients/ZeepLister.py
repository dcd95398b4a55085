"""Has zeep load the WSDL documents that standard input names, a line each, and writes for each a
line of JSON: its name and either the names of its operations or the error."""

import json
import sys

import zeep
import zeep.cache


def operations(document, transport):
    client = zeep.Client(document, transport=transport)
    return sorted(name
                  for service in client.wsdl.services.values()
                  for port in service.ports.values()
                  for name in port.binding.all())


def main():
    # Each imported schema is fetched once for all documents.
    transport = zeep.Transport(cache=zeep.cache.InMemoryCache())
    for line in sys.stdin:
        document = line.rstrip("\n")
        try:
            result = {"operations": operations(document, transport)}
        # Whatever zeep throws, it is zeep's word about the document.
        except Exception as error:
            result = {"error": f"{type(error).__name__}: {error}"}
        print(json.dumps({"document": document, **result}))


if __name__ == "__main__":
    main()
