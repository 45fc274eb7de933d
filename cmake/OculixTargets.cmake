# Shared compile settings for every Oculix target.
function(oculix_target_settings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
  if(OCULIX_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A unity build includes each source into another, and GCC then takes the
    # sources' anonymous-namespace types for a header's (clang has no such warning).
    target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
  endif()
  if(OCULIX_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=${OCULIX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE -fsanitize=${OCULIX_SANITIZE})
  endif()
endfunction()

# Sources of a directory, found by pattern so that each directory's owner
# adds classes without touching the build files.
function(oculix_glob_sources out dir)
  file(GLOB _found CONFIGURE_DEPENDS
       ${dir}/*.cpp ${dir}/*.h ${dir}/*.qrc)
  set(${out} ${_found} PARENT_SCOPE)
endfunction()
