#include <random>
#include <stdexcept>

#include "../client/StolenTime.h"
#include "Scenarios.h"

std::string Scenarios::itemsPath(int plid) {
    return "playlists:pl/items/" + std::to_string(plid);
}

void Scenarios::checkPage(const HttpConnection& connection, int firstPosition) {
    const std::string_view body = connection.body();
    if (connection.status() != 200)
        throw std::runtime_error("a page with status " + std::to_string(connection.status()));
    // One row has one path of its own, and one position.
    int rows = 0;
    constexpr std::string_view Path = R"("path":"playlists:item/)";
    for (std::size_t at = body.find(Path); at != std::string_view::npos;
         at = body.find(Path, at + 1))
        ++rows;
    const std::size_t list = body.find(R"("rows":)");
    const int first = numberAfter(body.substr(list), R"("value":{"i32":)");
    if (rows != PageRows || first != firstPosition)
        throw std::runtime_error("a page of " + std::to_string(rows) + " rows that begins at " +
                                 std::to_string(first));
}

void Scenarios::pages(const Library& library, Report& report) {
    constexpr double MedianBoundUs = 1000;
    constexpr double TailBoundUs = 3000;
    constexpr int Rounds = 25;
    constexpr int Kept = 5;
    constexpr int Requests = 500;
    constexpr int WarmUp = 50;
    const int lastPage = library.bigSize - PageRows;
    struct Place {
        const char* name;
        int low;
        int high;
    };
    const Place places[] = {
        {"page of 50 at the beginning", 0, 0},
        {"page of 50 in the middle", library.bigSize / 2, library.bigSize / 2},
        {"page of 50 at the end", lastPage, lastPage},
        {"page of 50 at a random place", 0, lastPage},
    };
    HttpConnection connection = library.device->connect();
    std::mt19937 dice(1);
    for (const Place& place : places) {
        std::uniform_int_distribution<int> offset(place.low, place.high);
        const auto round = [&] {
            Samples samples;
            for (int i = 0; i < WarmUp + Requests; ++i) {
                const int from = offset(dice);
                const std::string request =
                    HttpConnection::page(itemsPath(library.bigList), from, from + PageRows - 1);
                const Clock::time_point start = Clock::now();
                connection.exchange(request);
                if (i >= WarmUp)
                    samples.add(microsecondsSince(start));
                checkPage(connection, from);
            }
            return samples;
        };
        // Of each round its own figures, and of these the middle one: what else the machine does
        // for a moment is in one round and not in the table.
        Samples medians;
        Samples tails;
        double stolen = 0;
        for (const auto& [samples, percent] : leastDisturbed(Kept, Rounds, round)) {
            medians.add(samples.median());
            tails.add(samples.percentile(99));
            stolen = percent; // the last has the most
        }
        report.add(place.name, "median", medians.median(), "us", MedianBoundUs);
        report.add(place.name, "99th percentile", tails.median(), "us", TailBoundUs);
        report.add(place.name, Stolen, stolen, "%");
    }
}
