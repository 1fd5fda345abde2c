#include <gtest/gtest.h>

#include <cmath>

#include <zavbase/platform/numeric.h>

TEST(Numeric, PowersGoThroughTheLogarithm) {
    EXPECT_DOUBLE_EQ(ZAV_Exp10(2), 100.0);
    EXPECT_DOUBLE_EQ(ZAV_Pow(2, 3), 8.0);
    EXPECT_EQ(ZAV_Pow(-8.0f, 1.0f), -8.0f);
    EXPECT_TRUE(std::isnan(ZAV_Pow(-8.0, 3.0)));
    EXPECT_EQ(ZAV_Pow(0.0, 2.0), 0.0);
    EXPECT_TRUE(std::isinf(ZAV_Pow(0.0, -2.0)));
}

TEST(Numeric, DensityAndIntensityAreInverse) {
    for (const double p : {0.5, 1.0, 2.0}) {
        EXPECT_EQ(ZAV_Int2Dens(0, 255, 0.1, 3.0, 0.8, p), 3.0);
        EXPECT_NEAR(ZAV_Int2Dens(255, 255, 0.1, 3.0, 0.8, p), 0.1, 1e-12);
        for (double I = 1; I <= 255; I += 17) {
            const double D = ZAV_Int2Dens(I, 255, 0.1, 3.0, 0.8, p);
            EXPECT_NEAR(ZAV_Dens2Int(D, 255, 0.1, 3.0, 0.8, p), I, 1e-9);
        }
    }
    // By hand: Dmin 0, Dmax 1, g 1, p 1 gives 1 - log10(9 I / Imax + 1).
    EXPECT_DOUBLE_EQ(ZAV_Int2Dens(1, 3, 0, 1.0f, 1.0, 1), 1.0 - std::log10(4.0));
    EXPECT_TRUE(std::isnan(ZAV_Int2Dens(0.0, 0.0, 0.1, 3.0, 1.0, 1.0)));
}

TEST(Numeric, TheArrayFormOfTheGammaIsTheScalarOne) {
    double in[] = {0.0, 12.5, 100.0, 255.0}, out[4] = {-1, -1, -1, -1};
    for (const int count : {0, -1, 4}) {
        EXPECT_EQ(out[0], -1);
        ZAV_IntGamma(count, in, out, 255.0, 0.1, 3.0, 0.8, 2.2);
    }
    for (int i = 0; i < 4; ++i) EXPECT_EQ(out[i], ZAV_IntGamma(in[i], 255.0, 0.1, 3.0, 0.8, 2.2)) << i;
    EXPECT_NEAR(out[0], 0.0, 1e-12);
    EXPECT_NEAR(out[3], 255.0, 1e-9);
    float narrow[] = {12.5f};
    ZAV_IntGamma(1, narrow, narrow, 255.f, .1f, 3.f, .8f, 2.2f);
    EXPECT_NEAR(narrow[0], static_cast<float>(out[1]), 1e-3f);
}

TEST(Numeric, InverseIntensitiesAreThirtyTwoBitsWide) {
    EXPECT_EQ(ZAV_Dens2InvInt(1.0, 1000), 900ul);
    EXPECT_EQ(ZAV_Dens2InvInt(2.0, 4294967295ul), 4252017622ul);
    EXPECT_EQ(ZAV_Dens2InvInt(-1.0, 1), 4294967287ul) << "-9 modulo 2^32";
    EXPECT_EQ(ZAV_Dens2InvInt(-400.0, 1), 0ul);
    EXPECT_EQ(ZAV_Dens2InvInt(std::nan(""), 1), 0ul);
}
