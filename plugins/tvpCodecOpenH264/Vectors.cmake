# What is built for the processor's vectors. Leaves, here and in the folder above:
#   TARN_WITH_VECTORS        whether the code for vectors is built
#   TARN_VECTOR_SOURCES      the sources with it, or those without
#   TARN_VECTORS_DEFINITION  the instruction set that was named, for VectorTargets.cpp

set(TARN_VECTORS "" CACHE STRING
    "Instruction set to start with, as VectorTargets.h names it; empty: the fastest; OFF: none is built")

# Headers only: we choose among the instruction sets ourselves, so nothing of it is needed at run time.
find_path(HWY_INCLUDE_DIR hwy/highway.h)
set(version "")
foreach(header IN ITEMS base.h highway.h) # has moved
    if(EXISTS ${HWY_INCLUDE_DIR}/hwy/${header})
        file(STRINGS ${HWY_INCLUDE_DIR}/hwy/${header} lines REGEX "#define HWY_(MAJOR|MINOR|PATCH) [0-9]+")
        string(REGEX MATCHALL "[0-9]+" numbers "${lines}")
        list(JOIN numbers . found)
        string(APPEND version "${found}")
    endif()
endforeach()

set(TARN_WITH_VECTORS OFF)
if(TARN_VECTORS STREQUAL OFF)
    message(STATUS "Vectors: none are used, as TARN_VECTORS says")
elseif(version VERSION_GREATER_EQUAL 1.0.3)
    message(STATUS "Vectors: Highway ${version}")
    set(TARN_WITH_VECTORS ON)
else()
    if(version STREQUAL "")
        set(version "none")
    endif()
    message(WARNING "Highway 1.0.3 or later was not found (${version}, HWY_INCLUDE_DIR is ${HWY_INCLUDE_DIR}): "
        "the plug-in is built without vectors. Its results are the same, but it takes longer.")
endif()

set(folder ${CMAKE_CURRENT_LIST_DIR})
if(TARN_WITH_VECTORS)
    set(TARN_VECTOR_SOURCES ${folder}/IYUVRowsSimd.cpp ${folder}/StartCodeSearchSimd.cpp)
else()
    set(TARN_VECTOR_SOURCES ${folder}/WithoutVectors.cpp)
endif()
set(TARN_VECTORS_DEFINITION "")
if(TARN_VECTORS) # neither empty nor OFF
    set(TARN_VECTORS_DEFINITION "TARN_VECTORS=\"${TARN_VECTORS}\"")
endif()
foreach(result IN ITEMS TARN_WITH_VECTORS TARN_VECTOR_SOURCES TARN_VECTORS_DEFINITION)
    set(${result} "${${result}}" PARENT_SCOPE)
endforeach()
