# The man page. What is indented in help stays in lines, the rest is filled.
function escaped(text) {
    gsub(/\\/, "\\e", text)
    gsub(/-/, "\\-", text)
    gsub(/^['.]/, "\\\\\\&&", text)
    return text
}
# Escaped, in lines that end with a word.
function filled(text,    words, n, i, line, lines) {
    n = split(text, words, " ")
    line = words[1]
    for (i = 2; i <= n; ++i) {
        if (length(line) + 1 + length(words[i]) > 70) { # leaves room for escapes
            lines = lines escaped(line) "\n"
            line = words[i]
        } else
            line = line " " words[i]
    }
    return lines escaped(line)
}
function end_examples() {
    if (in_examples)
        print ".fi\n.RE"
    in_examples = 0
}
# Right below a heading a paragraph has begun already.
function begin_paragraph() {
    end_examples()
    if (!is_begun)
        print ".PP"
    is_begun = 0
}
function summary(name, text) { summaries = summaries ".TP\n.B " name "\n" filled(text) "\n" }
function command(name) {
    end_examples()
    if (!has_commands++)
        begin_commands()
    print ".SS " name
    is_begun = 1
}
function begin_commands() {
    print ".TH MINIHOST 1 \"" date "\" \"minihost " version "\" \"User Commands\""
    print ".SH NAME\nminihost \\- record, play and examine raw H.264 recordings"
    print ".SH SYNOPSIS\n.B minihost\n.I command\n.RI [ arguments ]"
    print ".br\n.B minihost help\n.RI [ command ]\n.br\n.B minihost \\-\\-version"
    print ".SH DESCRIPTION"
    print filled("Stands in for the camera viewer that the H.264 codec plug-in is made for, and runs it through " \
        "the same interfaces. Results go to standard output, messages to standard error.")
    printf "%s", summaries
    print ".SH COMMANDS"
}
function about(text) { begin_paragraph(); print filled(text) }
function usage(text) { begin_paragraph(); print ".B " escaped(text) }
function heading(text) { begin_paragraph(); print filled(text) ":" }
function example(line) {
    if (!in_examples++)
        print ".PP\n.RS 4\n.nf"
    print escaped(substr(line, 3))
}
function option(letter, name, value, text) {
    end_examples()
    print ".TP\n.BR " (letter == "" ? "" : "\\-" letter " \", \" ") "\\-\\-" escaped(name) \
        (value == "" ? "" : " \" \\fI" escaped(value) "\\fR\"")
    print filled(text)
}
function finish() {
    end_examples()
    print ".SH ENVIRONMENT\n.TP\n.B MINIHOST_PLUGIN_PATH"
    print filled("Where plug-ins are looked for when --plugin-path is not given: a file, a folder or a prefix.")
    print ".TP\n.B NO_COLOR\nWhen set, messages have no colour."
    print ".SH SEE ALSO\n.BR ffplay (1),\n.BR ffmpeg (1)"
}
