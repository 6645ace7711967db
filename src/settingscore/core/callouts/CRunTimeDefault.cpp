#include <settingscore/core/callouts/CRunTimeDefault.hpp>

#include <settingscore/core/callouts/detail/FailureText.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

CRunTimeDefault::CRunTimeDefault(const std::string& packageName, const std::string& functionName)
    : invoker_(boost::make_shared<CFunctionInvoker<CRunTimeDefaultSignature>>(packageName,
                                                                              functionName)) {}

std::string CRunTimeDefault::getFunctionName() const {
    return invoker_->getFunctionName();
}

std::string CRunTimeDefault::getPackageName() const {
    return invoker_->getPackageName();
}

std::string CRunTimeDefault::getBelongingLevel() const {
    return belongingLevel_;
}

void CRunTimeDefault::setBelongingLevel(const std::string& level) {
    belongingLevel_ = level;
}

bool CRunTimeDefault::operator==(const CRunTimeDefault& other) const {
    return getPackageName() == other.getPackageName() &&
           getFunctionName() == other.getFunctionName() && belongingLevel_ == other.belongingLevel_;
}

boost::any CRunTimeDefault::operator()() const {
    const std::string& functionName = invoker_->getFunctionName();
    const std::string& packageName = invoker_->getPackageName();
    boost::any result;
    try {
        const boost::function<CRunTimeDefaultSignature> compute = invoker_->loadCFunction();
        if (!compute) {
            throw boost::bad_function_call();
        }
        compute(&result);
    } catch (const MessageException<TOLVAN::settings::core::CFunctionNotFound>& e) {
        throw exception::RunTimeFuncInvokingError(functionName, packageName,
                                                  detail::catalogText(e));
    } catch (const exception::ErrorLoadingLibrary& e) {
        throw exception::RunTimeFuncInvokingError(functionName, packageName, e.getErrorMsg());
    } catch (...) {
        throw exception::RunTimeFuncInvokingError(functionName, packageName,
                                                  detail::unknownFailureText());
    }
    return result;
}

}  // namespace core
}  // namespace settings
