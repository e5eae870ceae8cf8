# The black-box tests run the built program, with the real plug-in or with one that behaves as a test wants.
find_package(nlohmann_json 3.11 REQUIRED)
target_compile_definitions(test_TarnHost PRIVATE
  TARN_PROGRAM="$<TARGET_FILE:tarn>" FAKE_PLUGIN="$<TARGET_FILE:fake_plugin>" TARN_ROOT="${CMAKE_SOURCE_DIR}")
target_link_libraries(test_TarnHost PRIVATE nlohmann_json::nlohmann_json OSAL)
add_dependencies(test_TarnHost tarn fake_plugin bit MemTest64)
