#!/usr/bin/env python3
"""Writes manual pages and completions from the tool's own tree of commands.

    kolink help --json | manual.py VERSION FOLDER

FOLDER gets man/*.1, bash/kolink, zsh/_kolink and fish/kolink.fish. What the tool does not know is
in none of them, so that they cannot become untrue.
"""
import datetime
import json
import os
import sys
from pathlib import Path

FILES = ("FILE", "FOLDER", "IN", "OUT", "LINK", "[FILE]")


def walk(command, names=()):
    """Every command with the words that lead to it."""
    yield names, command
    for sub in command["commands"]:
        yield from walk(sub, names + (sub["name"],))


def value_of(option):
    return option["value"] or ""


def place_of(option):
    """What stands for an argument that goes by its place."""
    value = value_of(option)
    return option["place"].upper() if not value or value in ("TEXT", "NUMBER") or ".." in value else value


# ---- Manual pages -------------------------------------------------------------------------------

def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("ΔE", "Delta E")
    return "\n".join("\\&" + line if line[:1] in (".", "'") else line for line in text.split("\n"))


def footer(text):
    """Paragraphs; lines that begin with a blank are examples and stay as they are."""
    out, literal = [], False
    for line in text.split("\n"):
        if line.startswith(" ") != literal and line:
            literal = not literal
            out.append(".PP\n.nf\n.RS" if literal else ".RE\n.fi\n.PP")
        out.append(roff(line.strip() if not literal else line[2:]) if line else ".PP" if not literal else "")
    if literal:
        out.append(".RE\n.fi")
    return "\n".join(out)


def options_of(command):
    out = []
    for option in command["options"]:
        value = value_of(option)
        if option["place"]:
            name = f"\\fI{roff(place_of(option))}\\fR"
        else:
            name = ", ".join(f"\\fB{roff(one)}\\fR" for one in option["names"])
            name += f" \\fI{roff(value)}\\fR" if value else ""
        out.append(f".TP\n{name}\n{roff(option['description'])}")
    return "\n".join(out)


def synopsis(names, command):
    places = []
    for option in command["options"]:
        if option["place"]:
            name = place_of(option)
            places.append(name if option["required"] else f"[{name}]")
    last = " COMMAND" if command["commands"] else ""
    return f".B kolink{''.join(' ' + name for name in names)}\n{roff('[OPTIONS] ' + ' '.join(places) + last)}"


def page(names, command, version, date, others):
    title = "-".join(("kolink",) + names)
    summary = command["description"].split(". ")[0]
    out = [f'.TH {title.upper()} 1 "{date}" "KoLink {version}" "User Commands"',
           ".SH NAME", f"{roff(title)} \\- {roff(summary[0].lower() + summary[1:])}",
           ".SH SYNOPSIS"]
    subs = [] if not names else command["commands"]
    if subs:
        out += [synopsis(names + (sub["name"],), sub) + "\n.br" for sub in subs]
    else:
        out.append(synopsis(names, command))
    out += [".SH DESCRIPTION", roff(command["description"]) + "."]
    out += [".SH OPTIONS", options_of(command)]
    for sub in subs:
        out += [f".SS kolink {' '.join(names)} {sub['name']}", roff(sub["description"]) + ".",
                options_of(sub)]
    if not names:
        out.append(".SH COMMANDS")
        out += [f".TP\n\\fB{sub['name']}\\fR\n{roff(sub['description'])}" for sub in command["commands"]]
    if command["footer"]:
        out += [".SH NOTES", footer(command["footer"])]
    out += [".SH EXIT STATUS",
            "0 when all went well, 1 when a file or the machine is at fault, 2 when the arguments are,",
            "3 when a gate does not hold, 128 plus the number of the signal that ended it.",
            ".SH SEE ALSO", ", ".join(f"\\fB{roff(other)}\\fR(1)" for other in others if other != title)]
    return title, "\n".join(out) + "\n"


def write_pages(tree, version, folder):
    stamp = int(os.environ.get("SOURCE_DATE_EPOCH", "0"))
    date = datetime.datetime.fromtimestamp(stamp, datetime.timezone.utc).strftime("%Y-%m-%d")
    shown = [((), tree)] + [((sub["name"],), sub) for sub in tree["commands"] if sub["name"] != "help"]
    titles = ["-".join(("kolink",) + names) for names, _ in shown]
    (folder / "man").mkdir(parents=True, exist_ok=True)
    for names, command in shown:
        title, text = page(names, command, version, date, titles)
        (folder / "man" / f"{title}.1").write_text(text, encoding="utf-8")


# ---- Completions --------------------------------------------------------------------------------

def write_bash(tree, folder):
    cases, values = [], []
    for names, command in walk(tree):
        path = " ".join(names)
        words = [one for option in command["options"] for one in option["names"]]
        words += [sub["name"] for sub in command["commands"]]
        cases.append(f'        "{path}") words="{" ".join(words)}" ;;')
        for option in command["options"]:
            for one in option["names"]:
                if option["words"] and "FILE" not in value_of(option):
                    values.append(f'        "{path} {one}") words="{" ".join(option["words"])}" ;;')
                elif value_of(option):
                    values.append(f'        "{path} {one}") words="{" ".join(option["words"])}" files=yes ;;')
    subs = " | ".join(f'"{" ".join(names)}"' for names, command in walk(tree) if names)
    lines = ["# bash completion of kolink, made from its own tree of commands",
             "_kolink()", "{",
             "    local current=${COMP_WORDS[COMP_CWORD]} before= path= words= files= word at",
             "    for ((at = 1; at < COMP_CWORD; ++at)); do",
             "        word=\"${path:+$path }${COMP_WORDS[at]}\"",
             f"        case $word in {subs}) path=$word ;; esac",
             "    done",
             "    before=\"$path ${COMP_WORDS[COMP_CWORD - 1]}\"",
             "    case $before in", *values,
             "        *)", "            case $path in",
             *("    " + case for case in cases), "            esac",
             "            [[ $current == -* ]] || [[ -z $path ]] || files=yes ;;",
             "    esac",
             "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))",
             "    if [[ -n $files ]]; then compopt -o default; fi",
             "}", "complete -F _kolink kolink"]
    (folder / "bash").mkdir(parents=True, exist_ok=True)
    (folder / "bash" / "kolink").write_text("\n".join(lines) + "\n", encoding="utf-8")


def zsh_text(text):
    for mark in "\\[]:'":
        text = text.replace(mark, {"'": "’"}.get(mark, "\\" + mark))
    return text


def zsh_arguments(command):
    out = []
    for option in command["options"]:
        value, text = value_of(option), zsh_text(option["description"])
        action = ""
        if value:
            known = f"({' '.join(option['words'])})" if option["words"] and "FILE" not in value else "_files"
            action = f":{zsh_text(value)}:{known}"
        if option["place"]:
            out.append(f"'*{action or ':argument:_files'}'")
        else:
            out += [f"'{one}[{text}]{action}'" for one in option["names"]]
    return out


def write_zsh(tree, folder):
    def branch(names, command, depth):
        pad = "    " * (depth + 1)
        if not command["commands"]:
            return [pad + "_arguments " + (" \\\n" + pad + "    ").join(dict.fromkeys(zsh_arguments(command)))]
        listed = " ".join(f"'{sub['name']}:{zsh_text(sub['description'])}'" for sub in command["commands"])
        out = [f"{pad}if (( CURRENT == {depth + 2} )); then",
               f"{pad}    local -a commands=({listed})",
               f"{pad}    _describe 'command' commands",
               f"{pad}    _arguments " + " ".join(zsh_arguments(command)),
               f"{pad}    return", f"{pad}fi", f"{pad}case $words[{depth + 2}] in"]
        for sub in command["commands"]:
            out += [f"{pad}{sub['name']})", *branch(names + (sub["name"],), sub, depth + 1), f"{pad}    ;;"]
        return out + [f"{pad}esac"]

    lines = ["#compdef kolink", "# made from kolink's own tree of commands", "_kolink() {",
             *branch((), tree, 0), "}", '_kolink "$@"']
    (folder / "zsh").mkdir(parents=True, exist_ok=True)
    (folder / "zsh" / "_kolink").write_text("\n".join(lines) + "\n", encoding="utf-8")


def write_fish(tree, folder):
    def quoted(text):
        return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"

    lines = ["# made from kolink's own tree of commands"]
    for names, command in walk(tree):
        condition = "__fish_use_subcommand" if not names else \
            "; and ".join(f"__fish_seen_subcommand_from {name}" for name in names)
        inner = condition
        if names and command["commands"]:
            inner += "; and not __fish_seen_subcommand_from " + " ".join(
                sub["name"] for sub in command["commands"])
        for sub in command["commands"]:
            lines.append(f"complete -c kolink -f -n {quoted(inner)} -a {sub['name']} -d {quoted(sub['description'])}")
        for option in command["options"]:
            if option["place"]:
                continue
            parts = [f"complete -c kolink -n {quoted(condition)}"]
            for one in option["names"]:
                parts.append(f"-l {one[2:]}" if one.startswith("--") else f"-s {one[1:]}")
            if option["value"]:
                parts.append("-r")
            if option["words"]:
                parts.append(("" if "FILE" in value_of(option) else "-f ") + f"-a {quoted(' '.join(option['words']))}")
            parts.append(f"-d {quoted(option['description'])}")
            lines.append(" ".join(parts))
    (folder / "fish").mkdir(parents=True, exist_ok=True)
    (folder / "fish" / "kolink.fish").write_text("\n".join(lines) + "\n", encoding="utf-8")


def main():
    version, folder = sys.argv[1], Path(sys.argv[2])
    tree = json.load(sys.stdin)
    write_pages(tree, version, folder)
    write_bash(tree, folder)
    write_zsh(tree, folder)
    write_fish(tree, folder)


main()
