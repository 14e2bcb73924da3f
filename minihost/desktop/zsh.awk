# The completion of zsh: commands and options with what they do, and files everywhere else.
function quoted(text) {
    gsub(/\[|\]|:|\\/, "\\\\&", text)
    gsub(/'/, "'\\''", text)
    return text
}
function summary(name, text) { commands = commands "        '" name ":" quoted(text) "'\n" }
function command(name) {
    end_case()
    current = name
}
function option(letter, name, value, text,    names, spec) {
    names = letter == "" ? "" : "(-" letter " --" name ")"
    spec = quoted(text)
    spec = "[" spec "]" (value == "" ? "" : ":" quoted(value) ":" (name ~ /^(output|plugin-path)$/ ? "_files" : " "))
    if (letter == "")
        options = options " \\\n            '--" name spec "'"
    else
        options = options " \\\n            '" names "'{-" letter ",--" name "}'" spec "'"
}
function end_case() {
    if (current != "")
        cases = cases "    " current ")\n        _arguments" options " \\\n            '*:file:_files'\n        ;;\n"
    options = ""
}
function finish() {
    end_case()
    print "#compdef minihost"
    print "# zsh completion for minihost " version ", made from its help"
    print "_minihost() {\n    local -a commands\n    commands=("
    printf "%s", commands
    print "        'help:how to use a command'\n    )"
    print "    if (( CURRENT == 2 )); then\n        _describe command commands\n        return\n    fi"
    print "    shift words\n    (( CURRENT-- ))"
    print "    case $words[1] in"
    printf "%s", cases
    print "    help)\n        _describe command commands\n        ;;\n    esac\n}"
    print "_minihost \"$@\""
}
function about(text) {}
function usage(text) {}
function heading(text) {}
function example(line) {}
