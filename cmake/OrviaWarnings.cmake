function(orvia_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    # GCC 12 reports overlapping copies inside std::string concatenation at -O2 and above that cannot happen
    # (its bug 105651); the warning stays on for every other compiler.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12
       AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(ORVIA_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()

# A module is compiled once into an object library; tests link its static archive, and the exported shared
# library is assembled from the objects of every module.
function(orvia_module name folder)
    file(GLOB _sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    if(NOT _sources)
        # A module without sources yet still yields an archive, so that the link lines stay the same.
        file(WRITE ${PROJECT_BINARY_DIR}/generated/${name}_empty.cpp "")
        set(_sources ${PROJECT_BINARY_DIR}/generated/${name}_empty.cpp)
    endif()
    add_library(${name}_objects OBJECT ${_sources})
    target_include_directories(${name}_objects PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_BINARY_DIR}/generated
                                               PRIVATE ${PROJECT_SOURCE_DIR}/${folder})
    target_compile_features(${name}_objects PUBLIC cxx_std_20)
    orvia_set_warnings(${name}_objects)
    add_library(${name} STATIC $<TARGET_OBJECTS:${name}_objects>)
    target_link_libraries(${name} PUBLIC ${name}_objects)
    set_property(GLOBAL APPEND PROPERTY ORVIA_MODULE_OBJECTS ${name}_objects)
endfunction()

# Dependencies of a module: its objects need the headers, its archive needs the libraries.
function(orvia_module_link name)
    target_link_libraries(${name}_objects ${ARGN})
endfunction()
