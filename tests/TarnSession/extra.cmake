# A plug-in that behaves as a test wants; the program's tests use it too.
find_package(nlohmann_json 3.11 REQUIRED)
add_library(fake_plugin MODULE ${folder}/fake/FakePlugin.cpp)
target_link_libraries(fake_plugin PRIVATE TarnPluginInterface CommonApp tarn_options)
target_compile_definitions(test_TarnSession PRIVATE FAKE_PLUGIN="$<TARGET_FILE:fake_plugin>")
target_link_libraries(test_TarnSession PRIVATE nlohmann_json::nlohmann_json)
add_dependencies(test_TarnSession fake_plugin)
