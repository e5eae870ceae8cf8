// The bodies of Boost.Asio and Boost.Beast, compiled here alone.
#include <boost/asio/impl/src.hpp>
#include <boost/beast/src.hpp>
