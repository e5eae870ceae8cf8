# The two exports are no part of the library that tests link.
set_source_files_properties(${CMAKE_SOURCE_DIR}/Tools/TRN/TarnFlows/Exports.cpp PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
target_sources(test_TarnFlows PRIVATE ${CMAKE_SOURCE_DIR}/Tools/TRN/TarnFlows/Exports.cpp)
# The examples of the protocol's description are run.
find_package(nlohmann_json 3.11 REQUIRED)
target_link_libraries(test_TarnFlows PRIVATE nlohmann_json::nlohmann_json)
target_compile_definitions(test_TarnFlows PRIVATE TARN_DOCS="${CMAKE_SOURCE_DIR}/docs")
