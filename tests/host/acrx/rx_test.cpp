// Run-time classes, messages to modules, demand-load records.
#include "host/acrx/rxclass.h"
#include "host/acrx/rxmodule.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST(Classes, ComeOnceAndTellWhenTheyLeave)
{
    struct Observer : AcRxClassObserver {
        std::vector<QString> left;
        void classToBeDeleted(AcRxClass *doomed) override { left.push_back(doomed->name()); }
    };
    static Observer observer; // The dictionary keeps it.
    AcRxClassDictionary dictionary;
    dictionary.addObserver(&observer);
    AcRxClass *const base = dictionary.add(std::make_unique<AcRxClass>("Base", nullptr, "", nullptr));
    AcRxClass *const derived =
        dictionary.add(std::make_unique<AcRxClass>("Derived", base, "DXFNAME", nullptr));
    EXPECT_EQ(dictionary.add(std::make_unique<AcRxClass>("Derived", base, "OTHER", nullptr)), nullptr);
    EXPECT_EQ(dictionary.atDxfName("DXFNAME"), derived);
    EXPECT_EQ(dictionary.atDxfName(""), nullptr);
    EXPECT_TRUE(derived->isDerivedFrom(base));
    EXPECT_FALSE(base->isDerivedFrom(derived));
    EXPECT_FALSE(derived->canCreate());
    const unsigned before = dictionary.generation();
    dictionary.remove(derived);
    EXPECT_GT(dictionary.generation(), before);
    EXPECT_EQ(dictionary.at("Derived"), nullptr);
    EXPECT_THAT(observer.left, ElementsAre("Derived"));
}

static std::vector<int> s_messages;
static bool s_unlocks = false;

static AcRx::AppRetCode hear(AcRx::AppMsgCode message, void *packet)
{
    s_messages.push_back(message);
    if (message == AcRx::kInitAppMsg && s_unlocks)
        acrxDynamicLinker()->unlockApplication(packet);
    EXPECT_EQ(acrxDynamicLinker()->current(), packet);
    return AcRx::kRetOK;
}

TEST(Modules, HearTheirMessagesAndLeaveOnlyUnlocked)
{
    s_messages.clear();
    s_unlocks = false;
    AcRxModulePacket *const locked = acrxDynamicLinker()->attachModule("locked", hear);
    EXPECT_FALSE(acrxDynamicLinker()->unloadModule("locked"));
    acrxDynamicLinker()->broadcast(AcRx::kLoadDwgMsg);
    EXPECT_EQ(acrxDynamicLinker()->send(locked, AcRx::kInvkSubrMsg), AcRx::kRetOK);
    acrxDynamicLinker()->unloadAll();
    EXPECT_EQ(acrxDynamicLinker()->send(locked, AcRx::kInvkSubrMsg), AcRx::kRetError);
    s_unlocks = true;
    acrxDynamicLinker()->attachModule("free", hear);
    EXPECT_TRUE(acrxDynamicLinker()->unloadModule("free"));
    EXPECT_FALSE(acrxDynamicLinker()->unloadModule("free"));
    EXPECT_THAT(s_messages, ElementsAre(1, 3, 5, 2, 1, 2));
    EXPECT_EQ(acrxDynamicLinker()->current(), nullptr);
}

TEST(Modules, AFileThatIsNoModuleIsRefusedWithTheReason)
{
    EXPECT_TRUE(acrxDynamicLinker()->loadModule("no/such/file.so").error().contains("no/such/file.so"));
    EXPECT_FALSE(acrxDynamicLinker()->loadModule("/proc/self/exe"));
}

TEST(DemandLoad, RecordsAreKeptAndReplaced)
{
    AcadAppInfo info{"App", "/path/app.so", "An application",
                     7,     "GROUP",        {{"GLOBAL", "local"}, {"G2", "图"}}};
    ASSERT_TRUE(info.writeToRegistry());
    info.moduleName = "/other/app.so";
    ASSERT_TRUE(info.writeToRegistry());
    const std::vector<AcadAppInfo> all = AcadAppInfo::readAll();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].moduleName, "/other/app.so");
    EXPECT_EQ(all[0].loadReasons, 7);
    ASSERT_EQ(all[0].commands.size(), 2U);
    EXPECT_EQ(all[0].commands[1].localName, QStringLiteral("图"));
}
