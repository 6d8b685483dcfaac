# What the program says of its own build: the state of the sources and the day of their last change. Both come from
# the sources (or from whoever packs them, through SOURCE_DATE_EPOCH), so that two builds of the same give the same.
# Only one file gets to know them: a new commit compiles no other again.

set(build_ref "")
set(build_epoch "$ENV{SOURCE_DATE_EPOCH}")
find_program(KRCOMMON_GIT git)
# A copy of the sources inside another repository is not described by that one.
if(KRCOMMON_GIT AND EXISTS ${PROJECT_SOURCE_DIR}/.git)
    execute_process(COMMAND ${KRCOMMON_GIT} -C ${PROJECT_SOURCE_DIR} describe --always --dirty --abbrev=12
                    OUTPUT_VARIABLE build_ref OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    if(build_epoch STREQUAL "")
        execute_process(COMMAND ${KRCOMMON_GIT} -C ${PROJECT_SOURCE_DIR} log -1 --format=%ct
                        OUTPUT_VARIABLE build_epoch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
    endif()
endif()

set(build_date "")
if(build_epoch MATCHES "^[0-9]+$")
    # The time that is formatted is the one in the environment.
    set(outer_epoch "$ENV{SOURCE_DATE_EPOCH}")
    set(ENV{SOURCE_DATE_EPOCH} ${build_epoch})
    string(TIMESTAMP build_date "%Y-%m-%d" UTC)
    if(outer_epoch STREQUAL "")
        unset(ENV{SOURCE_DATE_EPOCH})
    endif()
endif()

set_property(SOURCE ${PROJECT_SOURCE_DIR}/tarnwell/build_facts.cpp APPEND PROPERTY COMPILE_DEFINITIONS
             TARNWELL_BUILD_REF="${build_ref}" TARNWELL_BUILD_DATE="${build_date}")
