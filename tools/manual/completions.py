"""Completion scripts for bash, zsh and fish, from the description of the command line."""
import re

FOLDER = "FOLDER"
SETTING = "NAME=VALUE"


def words_of(option):
    """The values that an option takes one of."""
    return option["value"].split("|") if "|" in option["value"] else []


def quoted(text):
    """A word for a shell."""
    return "'" + text.replace("'", "'\\''") + "'"


def bash_values(options, settings):
    """Cases for the word before the one to complete."""
    made = []
    for option in options:
        if not option["value"]:
            continue
        if words_of(option):
            action = f'COMPREPLY=($(compgen -W "{" ".join(words_of(option))}" -- "$word"))'
        elif option["value"] == FOLDER:
            action = 'COMPREPLY=($(compgen -d -- "$word")); compopt -o filenames'
        elif option["value"] == SETTING:
            action = f'COMPREPLY=($(compgen -S = -W "{" ".join(settings)}" -- "$word")); compopt -o nospace'
        else:
            action = ":"
        made.append(f'            {"|".join(option["names"])}) {action}; return ;;')
    return made


def bash(description, settings):
    subcommands = description["subcommands"]
    cases = []
    for sub in subcommands:
        cases += [f'    {sub["name"]})', '        case $before in', *bash_values(sub["options"], settings),
                  "        esac",
                  f'        words="{" ".join(name for option in sub["options"] for name in option["names"])}" ;;']
    names = [name for option in description["options"] for name in option["names"]]
    return "\n".join([
        "# bash completion for sxml",
        "_sxml() {",
        '    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} subcommand= words i',
        "    for ((i = 1; i < COMP_CWORD; ++i)); do",
        "        case ${COMP_WORDS[i]} in -*) ;; *) subcommand=${COMP_WORDS[i]}; break ;; esac",
        "    done",
        "    case $subcommand in",
        f'    "") COMPREPLY=($(compgen -W "{" ".join([sub["name"] for sub in subcommands] + names)}" -- "$word"))',
        "        return ;;",
        *cases,
        "    *) return ;;",
        "    esac",
        "    # Anything else is a file, which bash completes by itself.",
        '    case $word in -*) COMPREPLY=($(compgen -W "$words" -- "$word")) ;; esac',
        "}",
        "complete -o bashdefault -o default -F _sxml sxml",
        ""])


def zsh_text(text):
    """A description within an argument of _arguments."""
    return re.sub(r"([][:\\])", r"\\\1", text)


def zsh_action(option, settings):
    if words_of(option):
        return f':value:({" ".join(words_of(option))})'
    if option["value"] == FOLDER:
        return ":folder:_files -/"
    if option["value"] == SETTING:
        return f':setting:({" ".join(name + "=" for name in settings)})'
    if option["value"] in ("NAME",):
        return ":name:"
    return ":file:_files" if option["value"] else ""


def zsh_arguments(options, settings):
    made = []
    for option in options:
        for name in option["names"]:
            made.append(quoted(f'*{name}[{zsh_text(option["help"])}]{zsh_action(option, settings)}'))
    return made


def zsh(description, settings):
    made = ["#compdef sxml", "local -a subcommands", "subcommands=("]
    made += [f'    {quoted(sub["name"] + ":" + zsh_text(sub["help"]))}' for sub in description["subcommands"]]
    made += [")", "if (( CURRENT == 2 )); then",
             "    _describe subcommand subcommands",
             "    _arguments " + " ".join(zsh_arguments(description["options"], settings)), "    return", "fi",
             "local subcommand=$words[2]", "shift words", "(( CURRENT-- ))", "case $subcommand in"]
    for sub in description["subcommands"]:
        arguments = zsh_arguments(sub["options"], settings) + [quoted("*:file:_files")]
        made += [f'    {sub["name"]}) _arguments \\', "        " + " \\\n        ".join(arguments) + " ;;"]
    return "\n".join(made + ["esac", ""])


def fish_option(condition, option, settings):
    made = f"complete -c sxml -n {quoted(condition)}"
    for name in option["names"]:
        made += f" -l {name[2:]}" if name.startswith("--") else f" -s {name[1:]}"
    if words_of(option):
        made += " -x -a " + quoted(" ".join(words_of(option)))
    elif option["value"] == FOLDER:
        made += " -x -a '(__fish_complete_directories)'"
    elif option["value"] == SETTING:
        made += " -x -a " + quoted(" ".join(name + "=" for name in settings))
    elif option["value"]:
        made += " -r"
    return made + " -d " + quoted(option["help"])


def fish(description, settings):
    made = ["# fish completion for sxml"]
    made += [fish_option("__fish_use_subcommand", option, settings) for option in description["options"]]
    for sub in description["subcommands"]:
        made.append(f'complete -c sxml -f -n __fish_use_subcommand -a {sub["name"]} -d {quoted(sub["help"])}')
        condition = "__fish_seen_subcommand_from " + sub["name"]
        made += [fish_option(condition, option, settings) for option in sub["options"]]
    return "\n".join(made + [""])
