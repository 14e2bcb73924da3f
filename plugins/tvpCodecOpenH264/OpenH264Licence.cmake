# Turns the licence notice into a constant, byte for byte: cmake -DINPUT=... -DOUTPUT=... -P this.
file(READ ${INPUT} hex HEX)
string(LENGTH "${hex}" digits)
math(EXPR size "${digits} / 2")
string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${hex}")
string(REGEX REPLACE "(('....',){20})" "\\1\n" bytes "${bytes}")
file(WRITE ${OUTPUT}
    "#include \"OpenH264Licence.h\"\n\n"
    "char const kOpenH264Licence[] = {\n${bytes}};\n"
    "int const kOpenH264LicenceSize = ${size};\n")
