// Reads the capabilities of a service, submits a job to it and tells where the job's data goes.
//
//   cscript //nologo submit.js ID ADDRESS
//
// The library, the components and a transport library for the address must be registered and configured for the bitness
// of the script engine: %SystemRoot%\SysWOW64\cscript.exe is the 32-bit one of a 64-bit Windows.

function hex(status) {
    return "0x" + (status < 0 ? status + 0x100000000 : status).toString(16).toUpperCase();
}

function submit(id, address) {
    var parent = new ActiveXObject("QBNORVEL.WendrelParent");
    var service = new ActiveXObject("QBNORVEL.ServiceDesc");
    service.SetID(id);
    service.SetAddress(address);

    var agent = parent.CreateWendrel(service);
    WScript.Echo("capabilities: " + agent.GetCapabilitiesTicket());

    // The answer is a plain IUnknown. JScript would ask it for its other side by itself; a script in any other language
    // does as this one does.
    var answer = agent.SendIntentTicket("<intentTicket><jobName>Programme</jobName></intentTicket>");
    var transport = new ActiveXObject("QBNORVEL.ScriptAccess").AsObject(answer);
    WScript.Echo("data address: " + transport.GetTargetURI());
    WScript.Echo("job address: " + transport.GetJobURI());

    // A failing status arrives as an error with the status as its number.
    try {
        agent.SendIntentTicket("");
    } catch (error) {
        WScript.Echo("an empty ticket: " + hex(error.number));
    }
}

if (WScript.Arguments.length != 2) {
    WScript.Echo("usage: cscript //nologo submit.js ID ADDRESS");
    WScript.Quit(2);
}
try {
    submit(WScript.Arguments(0), WScript.Arguments(1));
} catch (error) {
    WScript.Echo("failed: " + hex(error.number) + " " + error.message);
    WScript.Quit(1);
}
