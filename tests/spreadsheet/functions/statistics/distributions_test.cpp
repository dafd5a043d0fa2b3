#include "tests/spreadsheet/functions/FormulaSheet.h"

using namespace spreadsheet;

// Probabilities and quantiles were computed from the integrals with 30 digits, apart from this program.

TEST(Distributions, Normal)
{
    FormulaSheet().expect({
        {"NORMDIST(42,40,1.5,TRUE)", "0.908788780274"},
        {"NORM.DIST(42,40,1.5,FALSE)", "0.109340049784"},
        {"NORMDIST(42,40,0,TRUE)", "#NUM!"},
        {"NORMDIST(\"x\",40,1,TRUE)", "#VALUE!"},
        {"NORMDIST(42,40,1.5,\"TRUE\")", "0.908788780274"},
        {"NORMSDIST(1.333333)", "0.908788725604"},
        {"NORMSDIST(-8)*1E16", "6.22096057427"}, // no digits are lost far out
        {"NORM.S.DIST(1.333333,TRUE)", "0.908788725604"},
        {"NORM.S.DIST(0,FALSE)^2*2*PI()", "1"},
        {"NORMINV(0.908789,40,1.5)", "42.0000020096"},
        {"NORM.INV(0.5,40,1.5)", "40"},
        {"NORMINV(0,40,1.5)", "#NUM!"},
        {"NORMINV(1,40,1.5)", "#NUM!"},
        {"NORMINV(0.75,40,-1)", "#NUM!"},
        {"NORMSINV(1E-10)", "-6.3613409024"},
        {"NORM.S.INV(NORMSDIST(1))", "1"},
        {"LOGNORMDIST(4,3.5,1.2)", "0.0390835557068"},
        {"LOGNORM.DIST(4,3.5,1.2,FALSE)", "0.0176175966818"},
        {"LOGNORM.DIST(0,3.5,1.2,TRUE)", "#NUM!"},
        {"LOGINV(0.039084,3.5,1.2)", "4.00002521868"},
        {"LOGINV(0.75,3.5,-1)", "#NUM!"},
        {"LOGNORM.INV(0.5,0,1)", "1"},
        {"STANDARDIZE(42,40,1.5)*3", "4"},
        {"STANDARDIZE(42,40,-1)", "#NUM!"},
        {"CONFIDENCE(0.05,2.5,50)", "0.692951912175"},
        {"CONFIDENCE.NORM(0.05,2.5,50.9)", "0.692951912175"},
        {"CONFIDENCE.T(0.05,1,50)", "0.284196855496"},
        {"CONFIDENCE.T(0.05,1,1)", "#DIV/0!"},
        {"CONFIDENCE(1,2.5,50)", "#NUM!"},
        {"FISHER(0.75)", "0.972955074528"},
        {"FISHER(1)", "#NUM!"},
        {"FISHERINV(FISHER(0.75))", "0.75"},
        {"GAUSS(2)", "0.477249868052"},
        {"PHI(0.75)", "0.301137432155"},
    });
}

TEST(Distributions, StudentChiSquaredFisher)
{
    FormulaSheet().expect({
        {"TDIST(1.959999998,60,2)", "0.0546449299759"},
        {"TDIST(1.959999998,60,1)*2", "0.0546449299759"},
        {"TDIST(-1,60,1)", "#NUM!"},
        {"TDIST(1,60,3)", "#NUM!"},
        {"TDIST(1,0.9,1)", "#NUM!"},
        {"T.DIST(-1.5,7,TRUE)", "0.088649243495"},
        {"T.DIST(60,1,FALSE)*PI()*3601", "1"}, // one degree: 1/(π(1+x²))
        {"T.DIST.RT(-2,5)", "0.949030260585"},
        {"T.DIST.2T(1.959999998,60)", "0.0546449299759"},
        {"T.DIST.2T(-1,60)", "#NUM!"},
        {"TINV(0.054645,60)", "1.95999941298"},
        {"T.INV.2T(1,5)", "0"},
        {"TINV(0,60)", "#NUM!"},
        {"TINV(1.5,60)", "#NUM!"},
        {"T.INV(0.75,2)", "0.816496580928"},
        {"T.INV(0.25,2.9)", "-0.816496580928"}, // degrees are cut off
        {"CHIDIST(18.307,10)", "0.0500005890914"},
        {"CHISQ.DIST.RT(18.307,10)", "0.0500005890914"},
        {"CHIDIST(-1,10)", "#NUM!"},
        {"CHISQ.DIST(0.5,1,TRUE)", "0.520499877813"},
        {"CHISQ.DIST(2,3,FALSE)", "0.20755374871"},
        {"CHISQ.DIST(0,2,FALSE)", "0.5"},
        {"CHISQ.DIST(0,1,FALSE)", "#NUM!"}, // beyond every bound
        {"CHIINV(0.050001,10)", "18.306973457"},
        {"CHISQ.INV.RT(1,10)", "0"},
        {"CHIINV(0,10)", "#NUM!"},
        {"CHISQ.INV(CHISQ.DIST(3,4,TRUE),4)", "3"},
        {"FDIST(15.20686486,6,4)", "0.0100000000014"},
        {"F.DIST.RT(0,6,4)", "1"},
        {"FDIST(1,0,4)", "#NUM!"},
        {"F.DIST(15.2069,6,4,FALSE)", "0.00122379170878"},
        {"F.DIST(15.20686486,6,4,TRUE)", "0.989999999999"},
        {"FINV(0.01,6,4)", "15.2068648612"},
        {"F.INV.RT(0.01,6,4)", "15.2068648612"},
        {"F.INV(0.99,6,4)", "15.2068648612"},
        {"FINV(1.1,6,4)", "#NUM!"},
    });
}

TEST(Distributions, BetaGammaExponentialWeibull)
{
    FormulaSheet().expect({
        {"BETADIST(2,8,10,1,3)", "0.685470581055"},
        {"BETADIST(0.5,1,1)", "0.5"},
        {"BETADIST(4,8,10,1,3)", "#NUM!"},
        {"BETADIST(1,8,10,1,1)", "#NUM!"},
        {"BETA.DIST(2,8,10,TRUE,1,3)", "0.685470581055"},
        {"BETA.DIST(2,8,10,FALSE,1,3)", "1.48376464844"},
        {"BETA.DIST(0,1,3,FALSE)", "3"},
        {"BETAINV(0.685470581,8,10,1,3)", "1.99999999996"},
        {"BETA.INV(1,8,10,1,3)", "3"},
        {"BETAINV(0,8,10)", "#NUM!"},
        {"GAMMADIST(10.00001131,9,2,TRUE)", "0.0680940038698"},
        {"GAMMA.DIST(10.00001131,9,2,FALSE)", "0.0326391304183"},
        {"GAMMA.DIST(0,1,4,FALSE)", "0.25"},
        {"GAMMADIST(1,0,2,TRUE)", "#NUM!"},
        {"GAMMAINV(0.068094,9,2)", "10.0000111914"},
        {"GAMMA.INV(0,9,2)", "0"},
        {"GAMMALN(4.5)", "2.45373657084"},
        {"GAMMALN.PRECISE(1)", "0"},
        {"GAMMALN(0)", "#NUM!"},
        {"GAMMA(-3.75)", "0.267866128861"},
        {"GAMMA(6)", "120"},
        {"GAMMA(-2)", "#NUM!"},
        {"GAMMA(200)", "#NUM!"},
        {"EXPONDIST(0.2,10,TRUE)", "0.864664716763"},
        {"EXPON.DIST(0.2,10,FALSE)", "1.35335283237"},
        {"EXPONDIST(0.2,0,TRUE)", "#NUM!"},
        {"WEIBULL(105,20,100,TRUE)", "0.929581390069"},
        {"WEIBULL.DIST(105,20,100,FALSE)", "0.0355888640245"},
        {"WEIBULL(-1,20,100,TRUE)", "#NUM!"},
    });
}

TEST(Distributions, WholeNumbers)
{
    FormulaSheet().expect({
        {"BINOMDIST(6,10,0.5,FALSE)", "0.205078125"},
        {"BINOM.DIST(6.9,10.9,0.5,TRUE)", "0.828125"},
        {"BINOMDIST(0,0,0.5,TRUE)", "1"},
        {"BINOMDIST(11,10,0.5,FALSE)", "#NUM!"},
        {"BINOMDIST(-0.5,10,0.5,FALSE)", "#NUM!"},
        {"BINOM.DIST.RANGE(10,0.5,-0.5,3)", "#NUM!"},
        {"BINOMDIST(3,10,1.1,FALSE)", "#NUM!"},
        {"BINOMDIST(10,10,1,FALSE)", "1"},
        {"BINOM.DIST.RANGE(60,0.75,45,50)", "0.523629793472"},
        {"BINOM.DIST.RANGE(10,0.5,6)", "0.205078125"},
        {"BINOM.DIST.RANGE(10,0.5,6,5)", "#NUM!"},
        {"BINOM.DIST.RANGE(10,0.3,0,10)", "1"}, // any count
        {"CRITBINOM(6,0.5,0.75)", "4"},
        {"BINOM.INV(1,0.5,0.5)", "0"},
        {"BINOM.INV(100,0.3,0.999999)", "53"},
        {"CRITBINOM(6,0.5,1)", "#NUM!"},
        {"NEGBINOMDIST(10,5,0.25)", "0.0550486603752"},
        {"NEGBINOM.DIST(10,5,0.25,TRUE)", "0.313514058478"},
        {"NEGBINOMDIST(0,0,0.25)", "#NUM!"},
        {"NEGBINOMDIST(0,3,1)", "1"},
        {"NEGBINOMDIST(-0.5,3,1)", "#NUM!"},
        {"POISSON(2,5,FALSE)", "0.0842243374886"},
        {"POISSON.DIST(2,5,TRUE)", "0.124652019483"},
        {"POISSON(0,0,FALSE)", "1"},
        {"POISSON(-1,5,FALSE)", "#NUM!"},
        {"POISSON(-0.1,5,TRUE)", "#NUM!"}, // less than 0 before it is cut off
        {"POISSON(2.9,5,FALSE)", "0.0842243374886"},
        {"POISSON(4,1E80,FALSE)+POISSON(4,1E80,TRUE)", "0"}, // too small for a number
        {"HYPGEOMDIST(1,4,8,20)*4845", "1760"},              // 8 · C(12,3) of C(20,4)
        {"HYPGEOM.DIST(1,4,8,20,TRUE)*4845", "2255"},
        {"HYPGEOM.DIST(0,2,1,9E8,FALSE)*9E8-9E8", "-2"}, // (N - n)/N
        {"HYPGEOM.DIST(3,500,1000,200000,FALSE)", "0.214647999626"},
        {"HYPGEOM.DIST(20,5000,1000,200000,TRUE)", "0.181561196767"},
        {"HYPGEOM.DIST(30,5000,1000,200000,TRUE)", "0.866757672963"},
        {"HYPGEOM.DIST(100001,100001,100001,100001,TRUE)", "1"},
        {"HYPGEOMDIST(5,4,8,20)", "#NUM!"},
        {"HYPGEOMDIST(-0.5,4,8,20)", "#NUM!"},
        {"HYPGEOMDIST(1,4,18,20)", "#NUM!"}, // at least two must be among them
    });
}
