#include <settingscore/core/callouts/detail/BelongingLevel.hpp>

#include <boost/variant/static_visitor.hpp>

namespace settings {
namespace core {
namespace detail {

namespace {

class SetBelongingLevel : public boost::static_visitor<void> {
public:
    explicit SetBelongingLevel(const std::string& level) : level_(level) {}
    void operator()(boost::mpl::void_&) const {}
    template <class RunTimeDefault>
    void operator()(RunTimeDefault& runTimeDefault) const {
        runTimeDefault.setBelongingLevel(level_);
    }

private:
    const std::string& level_;
};

}  // namespace

void setBelongingLevel(RunTimeDefaultVariant& runTimeDefault, const std::string& level) {
    boost::apply_visitor(SetBelongingLevel(level), runTimeDefault);
}

}  // namespace detail
}  // namespace core
}  // namespace settings
