# Publishing is tested with those who publish and with our own listener, found beside the test program.
add_library(ThrowingListener MODULE ${folder}/fake/Throwing.cpp)
add_dependencies(test_Publisher ThrowingListener QuayListener)
target_link_libraries(test_Publisher PRIVATE QuayExceptions nlohmann_json::nlohmann_json)
target_compile_definitions(test_Publisher PRIVATE TARN_THROWING_LISTENER="$<TARGET_FILE:ThrowingListener>")
