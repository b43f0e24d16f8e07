"""brief.py: prints the JSON of the standard input with as much in a line as there is room for."""
import json
import pprint
import sys

pprint.pprint(json.load(sys.stdin), width=118, compact=True)
