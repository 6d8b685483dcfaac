# Header-only libraries come from Debian packages of the build machine. A cross compiler must never see the machine's
# own include directory, so the headers are linked into a directory of the build that holds nothing else.

find_package(Threads REQUIRED)

set(KRCOMMON_FOREIGN_INCLUDE ${PROJECT_BINARY_DIR}/foreign/include)
file(MAKE_DIRECTORY ${KRCOMMON_FOREIGN_INCLUDE})

function(krcommon_foreign_headers folder marker package)
    find_path(KRCOMMON_${folder}_ROOT ${folder}/${marker} PATHS /usr/include /usr/local/include
              NO_CMAKE_FIND_ROOT_PATH)
    if(NOT KRCOMMON_${folder}_ROOT)
        message(FATAL_ERROR "${folder}/${marker} not found: install ${package} (scripts/packages does)")
    endif()
    file(CREATE_LINK ${KRCOMMON_${folder}_ROOT}/${folder} ${KRCOMMON_FOREIGN_INCLUDE}/${folder} SYMBOLIC)
endfunction()

krcommon_foreign_headers(CLI CLI.hpp libcli11-dev)
add_library(krcommon_cli INTERFACE)
target_include_directories(krcommon_cli SYSTEM INTERFACE ${KRCOMMON_FOREIGN_INCLUDE})
