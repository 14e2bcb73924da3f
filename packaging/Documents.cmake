# Run by cpack on what it has collected, a folder for each package: what Debian wants beside or instead of the
# installed documents.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC) # SOURCE_DATE_EPOCH, when that is set
file(GLOB folders ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/doc/*)
foreach(folder IN LISTS folders)
    get_filename_component(package ${folder} NAME)
    file(WRITE ${folder}/changelog "${package} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What changed stands in CHANGELOG.md of the source.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
endforeach()
file(GLOB pages ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share/man/man*/*)
list(TRANSFORM folders APPEND /changelog)
execute_process(COMMAND gzip -9n ${folders} ${pages} COMMAND_ERROR_IS_FATAL ANY)
