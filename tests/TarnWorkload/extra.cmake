# The built programs are started.
add_dependencies(test_TarnWorkload bit MemTest64)
target_compile_definitions(test_TarnWorkload PRIVATE TARN_WORKLOAD_FOLDER="${CMAKE_BINARY_DIR}/share/tarn/workload")
