# Installs a built tree into a prefix of its own, builds the consumer beside this script against it
# with find_package only, runs it and checks that the static route it configures is installed.
#   cmake -DBUILD_DIR=... -DWORK_DIR=... -DBUILD_TYPE=... [-DCXX=...] [-DLAUNCHER=...] -P InstallTest.cmake
foreach(var BUILD_DIR WORK_DIR BUILD_TYPE)
  if(NOT DEFINED ${var})
    message(FATAL_ERROR "InstallTest: ${var} is not set")
  endif()
endforeach()

function(run_step what)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE status OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "InstallTest: ${what} failed (${status})\n${out}\n${err}")
  endif()
  set(step_output "${out}" PARENT_SCOPE)
endfunction()

set(prefix ${WORK_DIR}/prefix)
set(consumer_build ${WORK_DIR}/consumer)
file(REMOVE_RECURSE ${WORK_DIR})

run_step("install" ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(installed include/bowline/foundations/runtime/TaskScheduler.h include/bowline/protocol/ProtocolRootSm.h
                  include/bowline/platform/RibAgent.h include/bowline/host/Switch.h)
  if(NOT EXISTS ${prefix}/${installed})
    message(FATAL_ERROR "InstallTest: ${installed} is not installed")
  endif()
endforeach()

set(configure_args -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_PREFIX_PATH=${prefix})
if(CXX)
  list(APPEND configure_args -DCMAKE_CXX_COMPILER=${CXX})
endif()
if(LAUNCHER)
  list(APPEND configure_args -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER})
endif()
run_step("configuring the consumer" ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/consumer -B ${consumer_build}
         ${configure_args})
run_step("building the consumer" ${CMAKE_COMMAND} --build ${consumer_build})
run_step("running the consumer" ${consumer_build}/consumer)

foreach(expected "vrf default \\(id 0\\)" "\n    192\\.0\\.2\\.0/24 static pref 1 metric 0\n      via 198\\.51\\.100\\.2\n"
                 "ready: ipv4 yes, ipv6 yes")
  if(NOT step_output MATCHES "${expected}")
    message(FATAL_ERROR "InstallTest: the consumer's output lacks \"${expected}\":\n${step_output}")
  endif()
endforeach()
message(STATUS "InstallTest: the consumer built against ${prefix} installed the route:\n${step_output}")
