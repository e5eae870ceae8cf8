# The tests run the built program.
target_compile_definitions(test_TarnFormat PRIVATE TARN_FORMAT="$<TARGET_FILE:tarn-format>" DOCS="${CMAKE_SOURCE_DIR}/docs")
add_dependencies(test_TarnFormat tarn-format)
