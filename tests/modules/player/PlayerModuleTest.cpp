#include <dlfcn.h>
#include <gtest/gtest.h>
#include <memory>

#include "CMRootWorker.h"
#include "PlayLogicInterface.h"

namespace {

TEST(PlayerModule, isLoadedThroughItsOnlyEntryAndTakesItsPlace) {
    CMRootWorker root;
    void* library = dlopen(PLAYER_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_TRUE(library) << dlerror();
    using Create = CMAbstractWorker* (*)(QHash<QString, QVariant>);
    const auto create = reinterpret_cast<Create>(dlsym(library, "worker_create"));
    ASSERT_TRUE(create);
    {
        const std::unique_ptr<CMAbstractWorker> worker(
            create({{QStringLiteral("player/audioSink"), QStringLiteral("null")}}));
        EXPECT_EQ(root.worker(QStringLiteral("player")), worker.get());
        EXPECT_EQ(OrvoValue(root.getValue(OrvoPlayerStatePath())).string(), "stopped");
        EXPECT_TRUE(PlayLogicInterface::playerInstance()->player());
    }
    EXPECT_FALSE(PlayLogicInterface::playerInstance()->player());
    EXPECT_FALSE(root.worker(QStringLiteral("player")));
}

} // namespace
