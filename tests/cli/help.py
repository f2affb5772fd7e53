#!/usr/bin/env python3
"""Holds the help of every command against the tree of commands.

    help.py TREE.json TOOL...
"""
import json
import subprocess
import sys

faults = []


def look_at(command, names):
    said = subprocess.run(sys.argv[2:] + names + ["--help"], capture_output=True, check=True)
    lines = said.stdout.decode("utf-8").splitlines()
    name = " ".join(["kolink"] + names)
    faults.extend(f"{name}: longer than 80: {line}" for line in lines if len(line) > 80)
    words = set(" ".join(lines).replace(",", " ").split())
    for option in command["options"]:
        faults.extend(f"{name}: no {one}" for one in option["names"] if one not in words)
        if not option["description"]:
            faults.append(f"{name}: nothing on {option['names']}")
    for sub in command["commands"]:
        if sub["name"] not in words:
            faults.append(f"{name}: no command {sub['name']}")
        look_at(sub, names + [sub["name"]])
    return len(lines)


with open(sys.argv[1], encoding="utf-8") as file:
    tree = json.load(file)
if not any(command["name"] == "link" for command in tree["commands"]):
    faults.append("the tree has no link")
look_at(tree, [])
print("\n".join(faults))
sys.exit(1 if faults else 0)
