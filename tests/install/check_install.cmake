# Installs the library into a fresh prefix and builds the README's C host
# against the installed tree twice, through find_package and through
# pkg-config, then fits the bundled plate with each (under valgrind when
# given).  Run by ctest with -D BUILD_DIR, SOURCE_DIR, WORK, LIBDIR,
# C_COMPILER, PKG_CONFIG, DATA and optionally VALGRIND.
function(run what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "${what} failed (${rc}):\n${out}\n${err}")
  endif()
  set(output "${out}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${WORK})
set(prefix ${WORK}/prefix)
run("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

# The host is the complete example of the README, taken as it stands there.
file(READ ${SOURCE_DIR}/README.md readme)
string(FIND "${readme}" "<!-- compiled and run by tests/install -->" at)
if(at EQUAL -1)
  message(FATAL_ERROR "README.md has no example marked for tests/install")
endif()
string(SUBSTRING "${readme}" ${at} -1 rest)
string(FIND "${rest}" "```c\n" open)
math(EXPR open "${open} + 5")
string(SUBSTRING "${rest}" ${open} -1 rest)
string(FIND "${rest}" "\n```" close)
string(SUBSTRING "${rest}" 0 ${close} host)
file(WRITE ${WORK}/fit_csv.c "${host}\n")

# find_package: the imported target carries the include folder.
run("configure with find_package" ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/consumer
    -B ${WORK}/package-build -DCMAKE_PREFIX_PATH=${prefix} -DREQUIRED_VERSION=0.1
    -DHOST_SOURCE=${WORK}/fit_csv.c -DCMAKE_C_COMPILER=${C_COMPILER})
run("build with find_package" ${CMAKE_COMMAND} --build ${WORK}/package-build)
# A later minor version is another interface before 1.0: not found.
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/install/consumer
    -B ${WORK}/newer-build -DCMAKE_PREFIX_PATH=${prefix} -DREQUIRED_VERSION=0.2
    -DHOST_SOURCE=${WORK}/fit_csv.c -DCMAKE_C_COMPILER=${C_COMPILER}
    RESULT_VARIABLE rc OUTPUT_QUIET ERROR_QUIET)
if(rc EQUAL 0)
  message(FATAL_ERROR "find_package accepted version 0.1 for a request of 0.2")
endif()

# pkg-config, with the installed tree's own .pc file.
run("pkg-config" ${CMAKE_COMMAND} -E env PKG_CONFIG_PATH=${prefix}/${LIBDIR}/pkgconfig
    ${PKG_CONFIG} --cflags --libs QuentDGtrendFittingEngine)
separate_arguments(flags UNIX_COMMAND "${output}")
run("build with pkg-config" ${C_COMPILER} -std=c99 -Wall -Wextra -pedantic -Werror
    ${WORK}/fit_csv.c ${flags} -o ${WORK}/fit_csv_pkgconfig)

set(checker)
if(VALGRIND)
  set(checker ${VALGRIND} -q --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=all)
endif()
foreach(program ${WORK}/package-build/fit_csv ${WORK}/fit_csv_pkgconfig)
  run("${program}" ${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${prefix}/${LIBDIR}
      ${checker} ${program} ${DATA})
  foreach(expected "library 0.1.0" "curve 23: dG " "code 2: fitted: one transition"
                   "x 8.000  signal ")
    string(FIND "${output}" "${expected}" found)
    if(found EQUAL -1)
      message(FATAL_ERROR "${program} printed no \"${expected}\":\n${output}")
    endif()
  endforeach()
endforeach()
message(STATUS "installed tree: both hosts fitted the plate")
