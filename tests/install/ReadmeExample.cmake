# Builds the README's first program against the installed package (PREFIX)
# twice, with find_package and with the README's pkg-config command, and runs
# both on the installed trunnion example without LD_LIBRARY_PATH. The program
# and the command are taken from README.md itself, so that the README cannot
# drift from what works.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/src)
file(READ ${SOURCE_DIR}/README.md readme)

# The fenced block after a marker comment: ```LANGUAGE ... ```.
function(block_after marker language out)
  string(FIND "${readme}" "<!-- ${marker}" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "README.md has no <!-- ${marker} marker")
  endif()
  string(SUBSTRING "${readme}" ${at} -1 rest)
  string(FIND "${rest}" "```${language}\n" open)
  if(open EQUAL -1)
    message(FATAL_ERROR "no ```${language} block after the ${marker} marker")
  endif()
  string(LENGTH "```${language}\n" fence)
  math(EXPR open "${open} + ${fence}")
  string(SUBSTRING "${rest}" ${open} -1 rest)
  string(FIND "${rest}" "```" close)
  string(SUBSTRING "${rest}" 0 ${close} text)
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

block_after("readme-example" "cpp" program)
block_after("readme-pkg-config" "sh" command)
file(WRITE ${WORK_DIR}/src/app.cpp "${program}")
file(WRITE ${WORK_DIR}/src/CMakeLists.txt
     "cmake_minimum_required(VERSION 3.25)\n"
     "project(readme_example LANGUAGES CXX)\n"
     "set(CMAKE_CXX_STANDARD 17)\n"
     "find_package(mtkit CONFIG REQUIRED)\n"
     "add_executable(app app.cpp)\n"
     "target_link_libraries(app PRIVATE mtkit::mtkit)\n")

set(machine ${PREFIX}/share/mtkit/examples/machines/trunnion_5axis.json)
if(NOT EXISTS ${machine})
  message(FATAL_ERROR "the examples are not installed: ${machine} is missing")
endif()
# Worked out by hand: A = -30 turns the table about X through (0, 0, -120);
# the tip (10, 20, 30) in table coordinates is then (10 + X, 92.321 + Y,
# -0.096) in the machine, where the head's attach point, 250 above Z, must be.
set(expected "X=10.000 Y=92.321 Z=-250.096 A=-30.000 C=0.000 tip 10.000 20.000 30.000 mm, 0.000 mm left\n")

function(run_app program how)
  execute_process(COMMAND ${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${program} ${machine}
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(rc OR NOT out STREQUAL expected)
    message(FATAL_ERROR "the README example built with ${how} gave status ${rc}:\n${out}${err}\nexpected:\n${expected}")
  endif()
  message(STATUS "README example (${how}): ${out}")
endfunction()

# find_package
execute_process(COMMAND ${CMAKE_COMMAND} -S ${WORK_DIR}/src -B ${WORK_DIR}/cmake-build -G ${GENERATOR}
                        -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(rc)
  message(FATAL_ERROR "configuring the README example failed:\n${out}")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK_DIR}/cmake-build RESULT_VARIABLE rc OUTPUT_VARIABLE out
                ERROR_VARIABLE out)
if(rc)
  message(FATAL_ERROR "building the README example failed:\n${out}")
endif()
run_app(${WORK_DIR}/cmake-build/app find_package)

# pkg-config, with the README's command as it stands
find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/lib/pkgconfig:${PREFIX}/lib64/pkgconfig)
execute_process(COMMAND sh -c "${command}" WORKING_DIRECTORY ${WORK_DIR}/src RESULT_VARIABLE rc
                OUTPUT_VARIABLE out ERROR_VARIABLE out)
if(rc)
  message(FATAL_ERROR "the README's pkg-config command failed:\n${command}\n${out}")
endif()
run_app(${WORK_DIR}/src/app pkg-config)
