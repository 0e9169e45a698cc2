// A second type library in the same module.
asm(".pushsection .wnres.TYPELIB.2,\"a\"\n"
    ".ascii \"[uuid(51D1C2B4-8E0F-4C57-9E0B-7E8A0D1B2C30),version(2.5)]library Second{importlib(\\\"stdole2.tlb\\\");"
    "[object,uuid(51D1C2B4-8E0F-4C57-9E0B-7E8A0D1B2C31)]interface ISecond:IUnknown{HRESULT Go();};};\"\n"
    ".popsection\n");
