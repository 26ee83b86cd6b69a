# mutations/NAME.patch puts one fault into the store. Copies of the files that it touches are patched when they are
# built (a patch that no longer fits fails the build) and linked with everything else as it is. The test passes when
# the run says that it found the fault.
#
# How to add a fault: a patch with paths a/qmgr/store/... and a line on top that says what is wrong; its name below.

find_program(PATCH_PROGRAM patch REQUIRED)
add_custom_target(mutants)

# mqrig_add_mutant(NAME HARNESS): the target mutant_NAME
function(mqrig_add_mutant name harness)
  set(patch ${CMAKE_CURRENT_SOURCE_DIR}/mutations/${name}.patch)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${patch})
  set(folder ${CMAKE_CURRENT_BINARY_DIR}/mutations/${name})
  file(STRINGS ${patch} touched REGEX "^\\+\\+\\+ b/")
  set(faulty)
  set(replaced)
  foreach(line IN LISTS touched)
    string(REGEX REPLACE "^\\+\\+\\+ b/([^ \t]+).*" "\\1" file "${line}")
    list(APPEND faulty ${folder}/${file})
    list(APPEND replaced ${CMAKE_SOURCE_DIR}/${file})
    get_filename_component(source ${file} NAME)
    string(REPLACE "." "\\." source ${source})
    list(APPEND objects "/${source}\\.o")
  endforeach()
  list(JOIN replaced " " replaced_files)
  add_custom_command(
    OUTPUT ${faulty}
    COMMAND ${CMAKE_COMMAND} -E rm -rf ${folder}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}/qmgr/store
    COMMAND ${CMAKE_COMMAND} -E copy ${replaced} ${folder}/qmgr/store
    COMMAND ${PATCH_PROGRAM} --quiet --fuzz=0 --strip=1 --directory=${folder} --input=${patch}
    DEPENDS ${patch} ${replaced}
    VERBATIM)
  list(JOIN objects "|" pattern)
  set(target mutant_${name})
  add_executable(${target} ${faulty} $<FILTER:$<TARGET_OBJECTS:qmgr_store>,EXCLUDE,${pattern}>)
  target_compile_options(${target} PRIVATE -O0 -g0)
  target_include_directories(${target} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${target} PRIVATE ${harness} ${floors_above_the_store} mqi Threads::Threads PkgConfig::LMDB
    PkgConfig::SQLITE)
  target_link_options(${target} PRIVATE LINKER:--strip-all)
  set_target_properties(${target} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/bin/mutants OUTPUT_NAME ${name} LINKER_LANGUAGE CXX)
  add_dependencies(mutants ${target})
endfunction()

# mqrig_add_mutation(NAME HARNESS OPTION...)
function(mqrig_add_mutation name harness)
  mqrig_add_mutant(${name} ${harness})
  add_test(NAME Mutation.${name} COMMAND mutant_${name} --expect-fault ${ARGN})
  set_tests_properties(Mutation.${name} PROPERTIES LABELS qmgr TIMEOUT 300)
endfunction()

# Each with the step at which most kills of its run are: where the fault shows.
set(crash_mutations
  acknowledged_before_log=UnitPrepared
  backout_drops_gets=UnitReturned
  backout_keeps_depth=UnitReturned
  backout_keeps_gets=UnitReturned
  backouts_not_logged=UnitReturning
  bookings_of_dead_kept=UnitPreparing
  cleaner_wakes_nobody=UnitReturned
  definition_in_memory_only=DefinitionLogged
  definitions_not_finished=DefinitionLogged
  flip_before_log=UnitFlipped
  flip_not_atomic=UnitFlipping
  flip_of_all_prepared=UnitFlipped
  flip_without_log=UnitFlipped
  gets_not_logged=UnitFlipped
  gets_of_dead_kept=UnitReturning
  life_ready_before_filled=LiveFilling
  log_split_in_two=LiveRebuilt
  log_taken_over_unfinished=UnitLogged
  no_sleeper_watches_prepared=UnitPrepared
  nobody_is_woken=UnitFlipped
  opens_of_dead_kept=SlotCleaning
  prepare_split_in_two=UnitPreparing
  prepared_gets_fall_with_slot=UnitPrepared
  prepared_of_dead_left=UnitPrepared
  puts_not_hidden=UnitPrepared
  rebuild_forgets_the_last=LiveRebuilt
  requests_not_noted=RequestAnswered
  size_published_before_reserved=MapReserved
  slot_freed_before_cleaning=SlotCleaned
  temporary_queue_forgotten_first=TemporaryRemoving
  ticket_not_stored=UnitLogged
  undo_keeps_depth=UnitUndoing
  undone_is_acknowledged=UnitUndoing)
foreach(mutation IN LISTS crash_mutations)
  string(REGEX MATCH "^([a-z_]+)=(.*)$" matched ${mutation})
  mqrig_add_mutation(${CMAKE_MATCH_1} crash_harness --step ${CMAKE_MATCH_2} --kills 400 --patience 3)
endforeach()

# No fault, but a step to be killed at for which the product has no room: all is as it must be.
mqrig_add_mutant(killed_before_waking crash_harness)
add_test(NAME CrashRun.KilledBeforeWaking COMMAND mutant_killed_before_waking --step UnitReturned --kills 30)
set_tests_properties(CrashRun.KilledBeforeWaking PROPERTIES LABELS qmgr TIMEOUT 300)

foreach(name
    checksums_ignored
    default_not_in_its_place
    default_not_synced
    log_not_synced
    log_synced_at_checkpoints_only
    new_log_not_synced
    new_queue_manager_not_synced
    store_folder_not_synced)
  mqrig_add_mutation(${name} power_loss_harness)
endforeach()

# What a kill does not show, or too seldom: found by a test of the store.
set(store_mutations
  definition_before_log=Faults.ADefinitionThatCannotBeLoggedIsAsItWas
  quiet_note_of_any_time=LiveDamage.IsNotConcludedFromANoteOfAnEarlierTime
  requests_word_lowered_blindly=Requests.PutAfterALookStayAnnounced
  sweeping_of_dead_left=Processes.KilledWhileSweepingAQueueLeaveTheRestToTheNext)
foreach(mutation IN LISTS store_mutations)
  string(REGEX MATCH "^([a-z_]+)=(.*)$" matched ${mutation})
  set(name ${CMAKE_MATCH_1})
  set(test ${CMAKE_MATCH_2})
  mqrig_add_mutant(${name} GTest::gtest_main)
  target_sources(mutant_${name} PRIVATE $<TARGET_OBJECTS:qmgr_store_tests>)
  target_link_libraries(mutant_${name} PRIVATE GTest::gtest GTest::gmock)
  add_test(NAME Mutation.${name} COMMAND mutant_${name} --gtest_filter=${test})
  set_tests_properties(Mutation.${name} PROPERTIES LABELS qmgr TIMEOUT 300
    PASS_REGULAR_EXPRESSION "FAILED  \\] ${test}")
endforeach()
