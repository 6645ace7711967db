#include <settingscore/core/callouts/CValidator.hpp>

#include <settingscore/core/callouts/detail/FailureText.hpp>
#include <settingscore/core/exception/CalloutExceptions.hpp>
#include <settingscore/core/exception/MessageIds.hpp>
#include <settingscore/core/exception/ValidationExceptions.hpp>

#include <boost/make_shared.hpp>

namespace settings {
namespace core {

CValidator::CValidator(const std::string& packageName, const std::string& functionName)
    : invoker_(
          boost::make_shared<CFunctionInvoker<CValidatorSignature>>(packageName, functionName)) {}

std::string CValidator::getFunctionName() const {
    return invoker_->getFunctionName();
}

std::string CValidator::getPackageName() const {
    return invoker_->getPackageName();
}

bool CValidator::operator==(const CValidator& other) const {
    return getPackageName() == other.getPackageName() &&
           getFunctionName() == other.getFunctionName();
}

void CValidator::invokeValidationFunction(const boost::shared_ptr<const Settings>& parent,
                                          const std::string& keyName,
                                          const boost::any& value) const {
    const std::string& functionName = invoker_->getFunctionName();
    const std::string& packageName = invoker_->getPackageName();
    try {
        const boost::function<CValidatorSignature> validate = invoker_->loadCFunction();
        if (!validate) {
            // Not translated below: it is no hf::except::IException.
            throw boost::bad_function_call();
        }
        validate(parent, keyName, value);
    } catch (const MessageException<TOLVAN::settings::core::CFunctionNotFound>& e) {
        throw exception::ValidationFunctionInvokingError(functionName, packageName,
                                                         detail::catalogText(e));
    } catch (const exception::ErrorLoadingLibrary& e) {
        throw exception::ValidationFunctionInvokingError(functionName, packageName,
                                                         e.getErrorMsg());
    } catch (const hf::except::IException& e) {
        throw exception::ExceptionFromValidationFunction(parent, keyName, value, functionName,
                                                         packageName, detail::whatText(e));
    }
}

}  // namespace core
}  // namespace settings
