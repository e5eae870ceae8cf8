find_package(nlohmann_json 3.11 REQUIRED)
target_link_libraries(test_QuayCommands PRIVATE nlohmann_json::nlohmann_json)
