# The tests run the built program, and one with commands that fail in every way.
add_executable(failing_format ${folder}/failing/FailingFormat.cpp)
target_link_libraries(failing_format PRIVATE TarnFormatImpl tarn_options)
target_compile_definitions(test_TarnFormat PRIVATE
  TARN_FORMAT="$<TARGET_FILE:tarn-format>" FAILING_FORMAT="$<TARGET_FILE:failing_format>" DOCS="${CMAKE_SOURCE_DIR}/docs")
add_dependencies(test_TarnFormat tarn-format failing_format)
