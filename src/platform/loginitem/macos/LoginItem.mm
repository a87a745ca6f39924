#include "platform/loginitem/LoginItem.h"

#include "platform/error/Error.h"

#import <ServiceManagement/ServiceManagement.h>

namespace {

class ServiceLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override
    {
        return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
    }

    void enable() override
    {
        NSError *error = nil;
        if (!isEnabled() && ![SMAppService.mainAppService registerAndReturnError:&error])
            throw Error(QString::fromNSString(error.localizedDescription));
    }

    void disable() override
    {
        NSError *error = nil;
        if (isEnabled() && ![SMAppService.mainAppService unregisterAndReturnError:&error])
            throw Error(QString::fromNSString(error.localizedDescription));
    }
};

} // namespace

std::unique_ptr<LoginItem> LoginItem::ofDesktop(const QStringList &)
{
    return std::make_unique<ServiceLoginItem>();
}
