# find_package(mqrig): the target mqrig::mqm_r, the embedded queue manager with the headers of its interface.
include(${CMAKE_CURRENT_LIST_DIR}/mqrigTargets.cmake)
