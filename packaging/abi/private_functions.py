#!/usr/bin/env python3
"""Prints the private functions that a shared library exports, from its debug information and its dynamic symbols.

    private_functions.py LIBRARY

A private function is called from nowhere but its own library. Exported, it would be part of the binary interface all
the same, and a step that is renamed would break it. Virtual ones are left out: who derives has them in his tables.
"""

import re
import subprocess
import sys

DIE = re.compile(r"^ <([0-9a-f]+)><[0-9a-f]+>: Abbrev Number: \d+(?: \((DW_TAG_\w+)\))?")
ATTRIBUTE = re.compile(r"^    <[0-9a-f]+>   (DW_AT_\w+) *: (.*)")


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, text=True).stdout


def entries(library):
    """Yields depth, tag and attributes of each entry of the debug information."""
    current = None
    for line in output_of("readelf", "--wide", "--debug-dump=info", library).splitlines():
        if found := DIE.match(line):
            if current:
                yield current
            current = (int(found[1], 16), found[2], {})
        elif current and (found := ATTRIBUTE.match(line)):
            current[2][found[1]] = found[2]
    if current:
        yield current


def is_private(class_tag, attributes):
    # Without the attribute it is what the language says: private in a class, public in a struct.
    default = "3 (private)" if class_tag == "DW_TAG_class_type" else "1 (public)"
    return attributes.get("DW_AT_accessibility", default).strip().startswith("3")


def private_functions(library):
    parents = {}
    for depth, tag, attributes in entries(library):
        parents[depth] = (tag, attributes)
        class_tag, class_attributes = parents.get(depth - 1, (None, {}))
        if (
            tag == "DW_TAG_subprogram"
            and class_tag in ("DW_TAG_class_type", "DW_TAG_structure_type")
            and "DW_AT_declaration" not in class_attributes  # of these, not everything is told
            and "DW_AT_linkage_name" in attributes
            and "DW_AT_virtuality" not in attributes
            and is_private(class_tag, attributes)
        ):
            yield attributes["DW_AT_linkage_name"].split()[-1]


def main():
    library = sys.argv[1]
    exported = {line.split()[0].split("@")[0] for line in output_of("nm", "-D", "-P", "--defined-only", library).splitlines()}
    private = exported & set(private_functions(library))
    print("\n".join(sorted(output_of("c++filt", *private).splitlines())) if private else "", end="\n" if private else "")


if __name__ == "__main__":
    main()
