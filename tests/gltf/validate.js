// Prints what Khronos' validator finds in glTF files: node validate.js FOLDER_OF_MODULES FILE ... Infos are no fault.
const fs = require("fs");
const path = require("path");
const validator = require(path.join(process.argv[2], "gltf-validator"));

const check = async (file) => {
  const report = await validator.validateBytes(new Uint8Array(fs.readFileSync(file)), {
    uri: path.basename(file),
    externalResourceFunction: async (uri) =>
      new Uint8Array(fs.readFileSync(path.join(path.dirname(file), decodeURIComponent(uri)))),
  });
  const faults = report.issues.messages.filter((message) => message.severity < 2);
  faults.forEach((fault) => console.log(`${path.basename(file)}: ${fault.code} ${fault.message} ${fault.pointer}`));
  return faults.length === 0 && !report.issues.truncated;
};

(async () => {
  let good = true;
  for (const file of process.argv.slice(3)) good = (await check(file)) && good;
  process.exit(good ? 0 : 1);
})();
