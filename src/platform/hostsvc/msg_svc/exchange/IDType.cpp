#include <platform/hostsvc/msg_svc/exchange/IDType.hpp>

#include <boost/uuid/uuid_hash.hpp>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <random>

#include <pthread.h>

namespace hostsvc {
namespace msg_svc {
namespace exchange {

namespace {

// Counts the forks this process came out of: a child must not go on drawing the ids its parent
// draws too (two processes saving into one folder would pick the same temporary names).
std::atomic<unsigned> forkGeneration{0};
[[maybe_unused]] const int forkWatch = ::pthread_atfork(nullptr, nullptr, [] { ++forkGeneration; });

std::mt19937_64 seededEngine() {
    std::random_device source;
    std::seed_seq seed{source(), source(), source(), source(),
                       source(), source(), source(), source()};
    return std::mt19937_64(seed);
}

// A 64-bit engine per thread, seeded from the operating system's random source once, and again
// after a fork: two draws make an id, without a lock and without the per-32-bit distribution
// step of a general-purpose uuid generator (ids are made for every node of every file read).
std::mt19937_64& threadEngine() {
    thread_local std::mt19937_64 engine = seededEngine();
    thread_local unsigned generation = forkGeneration.load();
    const unsigned now = forkGeneration.load(std::memory_order_relaxed);
    if (generation != now) {
        engine = seededEngine();
        generation = now;
    }
    return engine;
}

}  // namespace

IDType::IDType() {
    std::mt19937_64& engine = threadEngine();
    const std::uint64_t high = engine();
    const std::uint64_t low = engine();
    std::memcpy(uuid_.data, &high, sizeof high);
    std::memcpy(uuid_.data + sizeof high, &low, sizeof low);
    // The marks of a random (version 4, variant 1) uuid, as any other generator would set.
    uuid_.data[6] = static_cast<std::uint8_t>((uuid_.data[6] & 0x0f) | 0x40);
    uuid_.data[8] = static_cast<std::uint8_t>((uuid_.data[8] & 0x3f) | 0x80);
}

namespace {

template <class Char>
void appendHex(const boost::uuids::uuid& uuid, std::basic_string<Char>& out) {
    static const char digits[] = "0123456789abcdef";
    const std::size_t start = out.size();
    out.resize(start + 2 * uuid.size());
    Char* next = &out[start];
    for (const std::uint8_t byte : uuid) {
        *next++ = static_cast<Char>(digits[byte >> 4]);
        *next++ = static_cast<Char>(digits[byte & 0x0f]);
    }
}

}  // namespace

std::string IDType::toString() const {
    std::string text;
    appendHex(uuid_, text);
    return text;
}

void IDType::appendTo(std::wstring& out) const {
    appendHex(uuid_, out);
}

std::size_t IDType::hashValue() const noexcept {
    return boost::uuids::hash_value(uuid_);
}

}  // namespace exchange
}  // namespace msg_svc
}  // namespace hostsvc
