#pragma once

#include <iosfwd>

#include "Platform/Cim/ITeskValue.h"
#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/Http/TSKHTTPResponse.h"

class ITeskInstance;
class ITeskInstanceName;
class ITeskSubscriber;
class ITeskSubscriptionFilter;
class ITeskTransaction;
struct TeskTransactionInfo;

class ITeskIndication {
  public:
    enum IndicationType : int {};
};

namespace urma::pf {

class Provider {
  public:
    virtual TSKSmrPtr<ITeskTransaction> startTransaction(TSKSmrPtr<TeskTransactionInfo> info);
    virtual void endTransaction(TSKSmrPtr<ITeskTransaction> transaction);
    virtual TSKSmrPtr<ITeskInstance> getInstance(TSKSmrPtr<ITeskInstanceName> instance,
                                                 TSKSmrPtr<ITeskTransaction> transaction);
    virtual TSKSmrPtr<ITeskValue> deregisterObserver(TSKSmrPtr<ITeskInstanceName> instance,
                                                     TSKSmrPtr<ITeskSubscriber> subscriber,
                                                     ITeskIndication::IndicationType type,
                                                     TSKSmrPtr<ITeskSubscriptionFilter> filter,
                                                     TSKSmrPtr<ITeskTransaction> transaction);
    virtual void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                                    TSKHTTPRequest& request, bool& handled,
                                    TSKSmrPtr<ITeskTransaction> transaction);
    virtual void startup();
    virtual void postStartup();
    virtual void shutdown();
    virtual bool getVersion(TSKString& version);
    virtual TSKString getProviderName();
    virtual void setWorkArea(const TSKString& path);
    virtual void debugDump(unsigned int level, std::ostream& stream);
    virtual ~Provider();
    virtual void logAuditInfo(TSKSmrPtr<ITeskValue> result, TSKSmrPtr<ITeskTransaction> transaction,
                              TSKSmrPtr<ITeskInstanceName> object, TSKString operation);
};

}  // namespace urma::pf
