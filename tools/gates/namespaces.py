#!/usr/bin/env python3
"""Each class of the programs is in a namespace, but for those whose bare name is known outside: forms
and tables that the logs name, and controls that are found by the name of their class."""
import re

import tree

# The engine has a face for C, whose names are bare; a test's name begins with its fixture's.
LEFT_OUT = ("jet/", "tests/")
KNOWN = {"frm0_Prep", "frm0Start", "frmTabs", "frmFCDName", "frm1Intro", "frm2RMAs", "frm3SRMaster",
         "frm3SRMasterAdd", "frm4FMZs", "frm5NVCTable", "frm6SuppressAcre", "c34NVCTable",
         "c35AACTable", "SRDataSource", "vsFlexGrid", "vsIndexTab", "FLabel", "SSPanel"}
NO_CODE = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'', re.S)
STEP = re.compile(r"\{|\}|^(?:template\s*<.*>\s*)?(?:class|struct|union|enum(?: class)?)\s+(?:\[\[.*?\]\]\s*)?(\w+)[^;{}()]*\{", re.M)


def bare_classes(text):
    """Line and name of each class that is defined outside of all namespaces."""
    code = NO_CODE.sub(lambda match: "\n" * match[0].count("\n"), text)
    depth = 0
    for match in STEP.finditer(code):
        if match[1] and depth == 0:
            yield code.count("\n", 0, match.start()) + 1, match[1]
        depth += -1 if match[0] == "}" else 1


def main():
    offenders = []
    for path in tree.code_files():
        name = tree.name(path)
        if name.startswith(LEFT_OUT):
            continue
        for number, found in bare_classes(path.read_text(encoding="utf-8")):
            if found not in KNOWN:
                offenders.append(f"{name}:{number}: {found} is in no namespace")
    tree.finish(offenders, "classes are in namespaces unless their bare names are known outside")


main()
