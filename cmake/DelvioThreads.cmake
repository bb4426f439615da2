# ThreadSanitizer for the code that works on several threads, in the tests of it: docs/threads.md.
# Only this code is compiled with it; the rest of the build, and the tests themselves, are the usual
# ones.
set(thread_tests
  dispatch_test patient_stat_test carbon_test thumbnail_parts_test thumbnail_image_test
  untrusted_icons_test session_bus_test operation_test)

set(rooms corefoundation carbon desktop dispatch quicklook events)
list(TRANSFORM rooms PREPEND platform_)
foreach(target ${rooms} file_steps operations)
  target_compile_options(${target} PRIVATE -fsanitize=thread)
  # The precompiled headers are compiled without it.
  set_target_properties(${target} PROPERTIES DISABLE_PRECOMPILE_HEADERS ON)
endforeach()
# Programs link the sanitizer, libraries leave it to them.
foreach(library platform file_steps operations)
  target_link_options(${library} INTERFACE -fsanitize=thread)
endforeach()
