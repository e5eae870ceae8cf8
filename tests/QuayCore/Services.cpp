#include <gtest/gtest.h>

#include <functional>

#include "CoreStart.h"
#include "OSAL/OSAL.h"
#include "ServiceDomain.h"
#include "Streams/LogPrinter.h"
#include "Support/Thrown.h"

namespace {

using namespace Core;
using Support::LocatedText;

std::string events;  // "+a" when a service is made, "-a" when it goes

class Probe : public Service {
public:
    Probe(std::string name, std::function<void(Service&)> onAttach) : m_name(std::move(name)), m_onAttach(onAttach) {
        events += "+" + m_name + " ";
    }
    ~Probe() override { events += "-" + m_name + " "; }
    void OnAttach() override {
        if (m_onAttach) m_onAttach(*this);
    }

private:
    std::string m_name;
    std::function<void(Service&)> m_onAttach;
};

/// Makes what the function makes.
template <typename I>
class Maker : public IClassCreator<I> {
public:
    explicit Maker(std::function<I*()> make) : m_make(std::move(make)) {}
    I* Create() override { return m_make(); }
    I* CreateAsCreated() override { return m_make(); }

private:
    std::function<I*()> m_make;
};

void Offer(ServiceDomain& domain, const std::string& name, std::function<void(Service&)> onAttach = {}) {
    domain.Register(name, std::make_shared<Maker<IService>>([=] { return new Probe(name, onAttach); }));
}

std::function<void(Service&)> Asking(std::vector<std::string> names) {
    return [=](Service& self) {
        for (const std::string& name : names)
            self.Query(name);
    };
}

struct Services : testing::Test {
    void SetUp() override { events.clear(); }
};

TEST_F(Services, LiveFromTheFirstQueryToTheLastRelease) {
    ServiceDomain domain;
    Offer(domain, "a");
    EXPECT_TRUE(domain.IsAvailable("a"));
    EXPECT_FALSE(domain.Exists("a") || domain.IsAvailable("b") || domain.Query("b") || domain.Query(""));
    IService* first = domain.Query("a");
    EXPECT_EQ(domain.Query("a"), first);
    EXPECT_EQ(domain.Find("a"), first);
    EXPECT_EQ(&first->GetDomain(), &domain);
    domain.Release("a");
    EXPECT_EQ(events, "+a ");
    domain.Release("a");
    EXPECT_EQ(events, "+a -a ");
    domain.Release("a");  // one too many
    EXPECT_EQ(domain.Find("a"), nullptr);
    domain.Query("a");
    domain.Register("a", std::make_shared<Maker<IService>>([] { return new Probe("second", {}); }));
    domain.Release("a");
    domain.Query("a");
    EXPECT_EQ(events, "+a -a +a -a +second ") << "what a replaced creator made goes the way it came";
    domain.Unregister("a");
    EXPECT_FALSE(domain.IsRegistered("a"));
}

TEST_F(Services, HoldWhatTheyQueryUntilTheyGo) {
    {
        ServiceDomain domain;
        Offer(domain, "a", Asking({"b", "c", "b", "nosuch"}));
        Offer(domain, "b");
        Offer(domain, "c", Asking({"b"}));
        domain.Query("a");
        EXPECT_EQ(events, "+a +b +c ");
        auto holders = domain.GetServices();
        std::string order;
        while (IInterface* holder = holders->Next())
            order += dynamic_cast<ServiceDomain::ServiceHolder&>(*holder).GetName();
        EXPECT_EQ(order, "bca") << "a service that others need is complete before them";
        domain.Release("a");
        EXPECT_EQ(events, "+a +b +c -c -b -a ");
        events.clear();
        domain.Query("a");
        auto* held = dynamic_cast<Service*>(domain.Query("c"));
        held->Release("nosuch");  // not held: nobody's count may go down
        held->Release("b");
        held->Release("b");
        EXPECT_NE(domain.Find("b"), nullptr) << "a still holds it";
        events.clear();
    }
    EXPECT_EQ(events, "-b -a -c ") << "with a domain all of its services go, whatever their counts";
}

TEST_F(Services, ThatComeBackToTheirOwnNameAreRefused) {
    ServiceDomain domain;
    Offer(domain, "self", Asking({"helper", "self"}));
    Offer(domain, "helper");
    Offer(domain, "x", Asking({"y"}));
    Offer(domain, "y", Asking({"x"}));
    const std::string where = " in Core::ServiceDomain::CreateHolder";
    EXPECT_EQ(LocatedText([&] { domain.Query("self"); }), "Circular dependance detected! Please check self" + where);
    EXPECT_EQ(events, "+self +helper -helper -self ") << "nothing is left behind";
    for (int attempt = 0; attempt < 2; ++attempt)
        EXPECT_EQ(LocatedText([&] { domain.Query("y"); }), "Circular dependance detected! Please check y" + where);
    EXPECT_EQ(domain.GetServices()->Next(), nullptr);
    Offer(domain, "y");
    EXPECT_NE(domain.Query("x"), nullptr) << "mended by the later registration";
}

TEST_F(Services, ThatCannotBeMadeOrAreAloneFailWithALocation) {
    ServiceDomain domain;
    domain.Register("none", std::make_shared<Maker<IService>>([] { return nullptr; }));
    domain.Register("value", std::make_shared<Maker<INamespace>>([] { return new Namespace; }));
    for (const char* name : {"none", "value"})
        EXPECT_EQ(LocatedText([&] { domain.Query(name); }),
                  "Assertion (m_pService) failed at Core::ServiceDomain::ServiceHolder::ServiceHolder in "
                  "Core::ServiceDomain::ServiceHolder::ServiceHolder");
    Service alone;
    EXPECT_EQ(LocatedText([&] { alone.Query("a"); }),
              "A service is not attached to any domain in Core::Service::GetDomain");
    EXPECT_EQ(LocatedText([&] { alone.Detach(); }),
              "Assertion (IsAttached()) failed at Core::Service::OnDetach in Core::Service::OnDetach");
    alone.Attach(domain);
    alone.Attach(domain);
    alone.Detach();
    EXPECT_TRUE(alone.IsAttached());
    alone.Detach();
    EXPECT_FALSE(alone.IsAttached());
}

TEST_F(Services, ReleaseThroughTheirOwnOperationWhenTheyGo) {
    struct Noting : Service {
        void ReleaseAll() override {
            events += "all ";
            Service::ReleaseAll();
            throw new Common::Exception("too late to be heard");
        }
    };
    ServiceDomain domain;
    Offer(domain, "b");
    domain.Register("a", std::make_shared<Maker<IService>>([] { return new Noting; }));
    dynamic_cast<Service*>(domain.Query("a"))->Query("b");
    domain.Release("a");
    EXPECT_EQ(events, "+b all -b ");
}

TEST_F(Services, OfOuterAndInnerDomainsAreReachedThroughEachOther) {
    ServiceDomain outer;
    Offer(outer, "common");
    outer.Register("inner", std::make_shared<Maker<IService>>([] {
                       auto* inner = new ServiceDomain;
                       Offer(*inner, "deep", Asking({"common"}));
                       return static_cast<IService*>(inner);
                   }));
    EXPECT_FALSE(outer.IsAvailable("inner.deep")) << "the inner domain isn't alive yet";
    EXPECT_EQ(outer.Query("inner.nosuch"), nullptr);
    EXPECT_EQ(outer.Find("inner"), nullptr) << "a failed query leaves no user";
    IService* deep = outer.Query("inner.deep");
    ASSERT_NE(deep, nullptr);
    EXPECT_EQ(outer.Find("inner.deep"), deep);
    EXPECT_TRUE(outer.IsAvailable("inner.deep") && outer.IsAvailable("inner.common"));
    EXPECT_FALSE(outer.Query("common.deep")) << "a plain service has nothing below it";

    std::string seen;
    const auto note = [&](const std::string& path, IInterface* object) {
        return seen += path + (object ? "! " : " "), true;
    };
    EXPECT_TRUE(outer.Enumerate(note, ""));
    EXPECT_EQ(seen, "common inner inner! inner.deep inner.deep! common! ");

    events.clear();
    outer.Release("inner.deep");
    EXPECT_EQ(events, "-common -deep ");
    EXPECT_EQ(outer.GetServices()->Next(), nullptr);

    ServiceDomain low, high;
    low.Attach(high);
    EXPECT_NE(LocatedText([&] { high.Attach(low); }), "nothing thrown") << "a ring of domains would ask for ever";
    low.Detach();
}

TEST(StartUp, LeavesTheServiceDomainAndNoLogDevice) {
    EXPECT_TRUE(Start() && Start());
    EXPECT_NE(dynamic_cast<IServiceDomain*>(Namespace::Get().Find("Services")), nullptr);
    OSAL::SetDebugOutputHook([](const char*) { ADD_FAILURE() << "a device is left"; });
    SingletonWrapper<Utilities::LogPrinter>::accessObject()->Print(1, "", 0, "", "line");
    OSAL::SetDebugOutputHook(nullptr);
}

}  // namespace
