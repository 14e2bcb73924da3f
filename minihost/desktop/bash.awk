# The completion of bash: commands, their options, and files everywhere else.
function command(name) {
    end_case()
    commands = commands " " name
    current = name
    options = ""
}
function option(letter, name, value, text) { options = options " --" name (letter == "" ? "" : " -" letter) }
function end_case() {
    if (current != "")
        cases = cases "    " current ") words='" substr(options, 2) "' ;;\n"
}
function finish() {
    end_case()
    print "# bash completion for minihost " version ", made from its help"
    print "_minihost()\n{"
    print "    local words='' current=${COMP_WORDS[COMP_CWORD]}"
    print "    case ${COMP_WORDS[1]} in"
    printf "%s", cases
    print "    help) words='" substr(commands, 2) "' ;;"
    print "    esac"
    print "    [ \"$COMP_CWORD\" -gt 1 ] || words='" substr(commands, 2) " help --help --version'"
    print "    COMPREPLY=()"
    print "    # Where no word is to be chosen, files are completed."
    print "    if [[ $current == -* || $COMP_CWORD -eq 1 || ${COMP_WORDS[1]} == help ]]; then"
    print "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")"
    print "    fi\n}"
    print "complete -o default -F _minihost minihost"
}
function summary(name, text) {}
function about(text) {}
function usage(text) {}
function heading(text) {}
function example(line) {}
