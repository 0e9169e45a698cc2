find_package(spdlog REQUIRED)
add_executable(logging_bench logging_bench.cpp)
target_link_libraries(logging_bench PRIVATE wncom_options wncom_logging spdlog::spdlog)
