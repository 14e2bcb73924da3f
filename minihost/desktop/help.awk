# Reads the program's help, as `pages` puts it together, and tells the functions of another script what it finds:
# summary(command, text)    the table of commands
# command(name)             the help of one begins
# about(text)               a paragraph
# example(line), usage(text), heading(text)
# option(letter, name, value, text)
# finish()
function flush_option() {
    if (name != "")
        option(letter, name, value, text)
    name = ""
}
function flush_paragraph() {
    if (paragraph != "")
        about(paragraph)
    paragraph = ""
}
function flush() {
    flush_option()
    flush_paragraph()
}
function begin_option(line,    words, n, i) {
    flush_option()
    letter = value = ""
    n = split(substr(line, 3, kLeftColumn), words, " ")
    for (i = 1; i <= n; ++i) {
        if (words[i] ~ /^--/)
            name = substr(words[i], 3)
        else if (words[i] ~ /^-.,$/)
            letter = substr(words[i], 2, 1)
        else
            value = words[i]
    }
    text = substr(line, 3 + kLeftColumn)
}
BEGIN { kLeftColumn = 20 } # as in Options.cpp

/^@program/ { in_program = 1; next }
/^@command/ { flush(); in_program = 0; command($2); next }
in_program {
    if (/^Usage:/)
        in_table = 1
    else if (in_table && match($0, /^  [a-z]+  +/) && $1 != "help")
        summary($1, substr($0, RLENGTH + 1))
    next
}
/^  -/ {
    if (paragraph != "") { # right above: what the options are about
        heading(paragraph)
        paragraph = ""
    }
    begin_option($0)
    next
}
name != "" && /^   / { sub(/^ +/, ""); text = text " " $0; next }
/^  / { flush(); example($0); next }
/^Usage: / { flush(); usage(substr($0, 8)); next }
/^$/ { flush(); next }
/^Exit code:/ { flush() }
{ flush_option(); paragraph = paragraph == "" ? $0 : paragraph " " $0 }
END { flush(); finish() }
