#include "fetch/FeedFetch.h"

int main(int argc, char **argv)
{
    fetchFeed({argv, static_cast<std::size_t>(argc)});
}
