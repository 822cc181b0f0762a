# SPDX-License-Identifier: GPL-3.0-or-later

# What every target of the project is compiled with.
add_library(tessaport_options INTERFACE)
target_compile_options(tessaport_options INTERFACE -Wall -Wextra -Wpedantic)
target_compile_definitions(tessaport_options INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_STRICT_ITERATORS)
if(TESSAPORT_WERROR)
    target_compile_options(tessaport_options INTERFACE -Werror)
endif()
if(TESSAPORT_SANITIZE)
    target_compile_options(tessaport_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(tessaport_options INTERFACE -fsanitize=address,undefined)
endif()
if(TESSAPORT_FUZZ)
    target_compile_options(tessaport_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# tessaport_library(NAME
#     HEADERS header... [SOURCES source...] [PUBLIC library...] [PRIVATE library...])
#
# One static library of the program. Its headers, and no others of its folder, become includable
# as "folder/Header.h" for the library itself and for whoever links it: they are linked into an
# include directory of the library's own. So a folder that does not link another can't include
# from it, and a small leaf may live in the folder it belongs to by subject.
function(tessaport_library name)
    cmake_parse_arguments(PARSE_ARGV 1 LIB "" "" "HEADERS;SOURCES;PUBLIC;PRIVATE")
    cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME folder)
    set(include_dir ${CMAKE_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${include_dir}/${folder})
    foreach(header IN LISTS LIB_HEADERS)
        file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/${header} ${include_dir}/${folder}/${header}
             SYMBOLIC)
    endforeach()

    add_library(${name} STATIC ${LIB_HEADERS} ${LIB_SOURCES})
    # Where Qt is static, its plugins are imported by the programs.
    set_target_properties(${name} PROPERTIES
        LINKER_LANGUAGE CXX
        QT_NO_PLUGINS "${Qt5Gui_PLUGINS};${Qt5Network_PLUGINS};${Qt5Widgets_PLUGINS}")
    target_include_directories(${name} PUBLIC ${include_dir})
    target_link_libraries(${name} PUBLIC tessaport_options ${LIB_PUBLIC} PRIVATE ${LIB_PRIVATE})
endfunction()
