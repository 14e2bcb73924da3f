# Debian's packages, which scripts/package makes: the plug-in for any host, the program, and what plug-ins are built with.
set(pluginPackage tarnviewer-codec-openh264)
set(programPackage minihost)
set(developmentPackage tarncore-dev)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "QUARN GmbH")
set(CPACK_PACKAGE_CONTACT "QUARN GmbH <info@quarn.com>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/Documents.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://www.quarn.com)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Where the core library and, when it is built for another processor, Debian's libraries are.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${TARN_OUTPUT_DIR})
if(CMAKE_SYSROOT)
    list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE})
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
foreach(component IN ITEMS plugin plugin-translations program program-translations desktop development)
    string(TOUPPER ${component} key)
    string(REGEX MATCH "^[a-z]+" group ${component})
    string(REPLACE desktop program group ${group})
    set(CPACK_COMPONENT_${key}_GROUP ${group})
endforeach()

set(sameVersion "(= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME ${pluginPackage})
set(CPACK_DEBIAN_PLUGIN_PACKAGE_ENHANCES tarnviewer)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SUGGESTS ${programPackage})
set(CPACK_DEBIAN_PLUGIN_DESCRIPTION "H.264 codec plug-in for the camera viewer tarnViewer
Encoder, decoder, saver and loader for raw H.264 recordings, built on
OpenH264, and their panel in the save dialog. Frame N of a recording is
picture N: any frame is had exactly, by its number, in any order.")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME ${programPackage})
set(CPACK_DEBIAN_PROGRAM_PACKAGE_DEPENDS "${pluginPackage} ${sameVersion}")
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS qttranslations5-l10n)
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "recorder and player for raw H.264 recordings
Records cameras, videos and pictures into raw H.264 files and plays them
picture by picture, on the command line and in a window. It stands in for
the camera viewer that its codec plug-in is made for.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${developmentPackage})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${programPackage} ${sameVersion}, qtbase5-dev")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "headers for plug-ins of the camera viewer tarnViewer
The interfaces between the viewer and its plug-ins, and a CMake package
with which plug-ins are built.")

# What Debian wants of each package's licence: ours, and in the plug-in's that of the codec.
file(READ ${PROJECT_SOURCE_DIR}/LICENSE licence)
file(READ ${PROJECT_SOURCE_DIR}/plugins/tvpCodecOpenH264/openh264-licence-notice.txt notice)
set(copyright ${CMAKE_CURRENT_BINARY_DIR}/copyright)
file(CONFIGURE OUTPUT ${copyright}/${programPackage} @ONLY
    CONTENT "The licence of the plug-in, of the program minihost and of their headers:\n\n@licence@")
configure_file(${copyright}/${programPackage} ${copyright}/${developmentPackage} COPYONLY)
file(CONFIGURE OUTPUT ${copyright}/${pluginPackage} @ONLY CONTENT "The licence of this plug-in:

@licence@

It works with the codec library OpenH264, which comes from Debian. The notice
that Cisco publishes for its own build of that library:

@notice@")
foreach(group IN ITEMS plugin program development)
    install(FILES ${copyright}/${${group}Package} RENAME copyright COMPONENT ${group}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${${group}Package})
endforeach()

include(CPack)
foreach(group IN ITEMS plugin program development)
    cpack_add_component_group(${group})
endforeach()
