#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionIndex.hpp>

#include <platform/hostsvc/msg_svc/eventmgr/detail/SubscriptionCount.hpp>

#include <boost/make_shared.hpp>
#include <boost/thread/locks.hpp>

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace hostsvc {
namespace msg_svc {
namespace eventmgr {
namespace detail {

namespace {

std::vector<std::wstring> distinctSorted(std::vector<std::wstring> tags) {
    std::sort(tags.begin(), tags.end());
    tags.erase(std::unique(tags.begin(), tags.end()), tags.end());
    return tags;
}

}  // namespace

Subscription::Subscription(std::uint64_t sequence, Handler handler,
                           boost::shared_ptr<TypeInformation> count, bool countsByTag,
                           std::vector<std::wstring> tags)
    : sequence_(sequence),
      handler_(std::move(handler)),
      count_(std::move(count)),
      typeName_(count_->getTypeName(0)),
      countsByTag_(countsByTag),
      tags_(std::move(tags)) {}

boost::shared_ptr<Subscription> SubscriptionIndex::add(
    const Subscription::Handler& handler, const boost::shared_ptr<TypeInformation>& count) {
    const auto* shape = dynamic_cast<const SubscriptionCount*>(count.get());
    if (shape == nullptr) {
        throw std::invalid_argument(
            "eventmgr::EventMgr: a subscription's count object must be a "
            "SubscriptionCountByType or a SubscriptionCountByTypedInstance.");
    }
    const bool byTag = shape->countsByTag();
    std::vector<std::wstring> tags =
        byTag ? distinctSorted(count->getTags()) : std::vector<std::wstring>();

    // Built before the lock: the count object's getTypeName is the caller's code.
    auto subscription =
        boost::make_shared<Subscription>(nextSequence_.fetch_add(1, std::memory_order_relaxed),
                                         handler, count, byTag, std::move(tags));

    boost::unique_lock<boost::shared_mutex> lock(mutex_);
    TypeEntry& entry = byType_[subscription->typeName()];
    if (byTag) {
        for (const std::wstring& tag : subscription->tags()) {
            entry.byTag[tag].emplace(subscription->sequence(), subscription);
        }
    } else {
        entry.everyEvent.emplace(subscription->sequence(), subscription);
    }
    return subscription;
}

void SubscriptionIndex::remove(const Subscription& subscription) {
    boost::unique_lock<boost::shared_mutex> lock(mutex_);
    const auto entry = byType_.find(subscription.typeName());
    if (entry == byType_.end()) {
        return;
    }
    if (subscription.countsByTag()) {
        for (const std::wstring& tag : subscription.tags()) {
            const auto bucket = entry->second.byTag.find(tag);
            if (bucket == entry->second.byTag.end()) {
                continue;
            }
            bucket->second.erase(subscription.sequence());
            if (bucket->second.empty()) {
                entry->second.byTag.erase(bucket);
            }
        }
    } else {
        entry->second.everyEvent.erase(subscription.sequence());
    }
    if (entry->second.everyEvent.empty() && entry->second.byTag.empty()) {
        byType_.erase(entry);
    }
}

std::vector<boost::shared_ptr<Subscription>> SubscriptionIndex::match(
    const std::vector<std::wstring>& typeChain, const std::vector<std::wstring>& tags) const {
    std::vector<boost::shared_ptr<Subscription>> found;
    boost::shared_lock<boost::shared_mutex> lock(mutex_);
    if (byType_.empty()) {
        return found;
    }
    for (const std::wstring& typeName : typeChain) {
        const auto entry = byType_.find(typeName);
        if (entry == byType_.end()) {
            continue;
        }
        for (const auto& item : entry->second.everyEvent) {
            found.push_back(item.second);
        }
        if (entry->second.byTag.empty()) {
            continue;
        }
        for (const std::wstring& tag : tags) {
            const auto bucket = entry->second.byTag.find(tag);
            if (bucket == entry->second.byTag.end()) {
                continue;
            }
            for (const auto& item : bucket->second) {
                found.push_back(item.second);
            }
        }
    }
    lock.unlock();

    // A subscription with several of the event's tags was found once per tag.
    const auto bySequence = [](const boost::shared_ptr<Subscription>& a,
                               const boost::shared_ptr<Subscription>& b) {
        return a->sequence() < b->sequence();
    };
    const auto sameSequence = [](const boost::shared_ptr<Subscription>& a,
                                 const boost::shared_ptr<Subscription>& b) {
        return a->sequence() == b->sequence();
    };
    std::sort(found.begin(), found.end(), bySequence);
    found.erase(std::unique(found.begin(), found.end(), sameSequence), found.end());
    return found;
}

}  // namespace detail
}  // namespace eventmgr
}  // namespace msg_svc
}  // namespace hostsvc
