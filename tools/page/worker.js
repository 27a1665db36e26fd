// Runs kwapayload on the one or two files that the page sends. Answers with messages:
//   {stage, share}   what it does now, and how much of that is done, from 0 to 1 or not known
//   {reports}        the end: an object of reports for each file; with two files, a third object for what differs
//   {failure}        the end: one sentence
// A report that cannot be made is null, and its reason is there under the name with "Fault".

const kMaximum = 1.5 * 2 ** 30;
const kChunk = 8 * 2 ** 20;

// The program is in this file. Emscripten's start would try to fetch it from there, which the page's policy forbids.
self.fetch = undefined;

class Failure extends Error {}

async function readFile(kwapayload, file) {
  if (file.size > kMaximum) {
    throw new Failure(`${file.name} is larger than 1.5 GB, which is more than this page can examine.`);
  }
  const begin = kwapayload._malloc(Math.max(file.size, 1)) >>> 0;
  if (begin === 0) {
    throw new Failure(`This browser has too little memory for ${file.name}.`);
  }
  for (let at = 0; at < file.size; at += kChunk) {
    postMessage({stage: `Reading ${file.name}`, share: at / file.size});
    const bytes = await file.slice(at, at + kChunk).arrayBuffer().catch(() => {
      throw new Failure(`${file.name} cannot be read. It may be a folder, or have changed in the meantime.`);
    });
    kwapayload.HEAPU8.set(new Uint8Array(bytes), begin + at);
  }
  return begin;
}

onmessage = async ({data: files}) => {
  try {
    const kwapayload = await StartKwapayload();
    const result = () => {
      const begin = kwapayload._KwaResult() >>> 0; // above 2 GiB, a pointer comes as a negative number
      return kwapayload.HEAPU8.slice(begin, kwapayload.HEAPU8.indexOf(0, begin));
    };
    const utf8 = new TextDecoder();

    const report = (number, ...names) => {
      const reports = {};
      for (const name of names) {
        const isDone = kwapayload.ccall('KwaReport', 'boolean', ['number', 'string'], [number, name]);
        const bytes = result();
        reports[name] = isDone ? (name.startsWith('preview') ? bytes : utf8.decode(bytes)) : null;
        reports[`${name}Fault`] = isDone ? null : utf8.decode(bytes);
      }
      return reports;
    };

    const all = [];
    for (const [number, file] of files.entries()) {
      const begin = await readFile(kwapayload, file);
      postMessage({stage: `Computing digests and checking signatures of ${file.name}`});
      if (!kwapayload.ccall('KwaOpen', 'boolean', ['number', 'number', 'number', 'string'],
                            [number, begin, file.size, file.name])) {
        throw new Failure(utf8.decode(result()));
      }
      const reports = report(number, 'listJson', 'verifyJson', 'listText', 'preview', 'previewXp', 'doubt');
      if (!reports.verifyJson) throw new Failure(reports.verifyJsonFault);
      if (!reports.listJson) Object.assign(reports, report(number, 'sha256'));
      all.push(reports);
    }
    if (files.length === 2) {
      postMessage({stage: 'Comparing the two files'});
      all.push(report(0, 'compareJson', 'compareText'));
    }
    postMessage({reports: all});
  } catch (error) {
    postMessage({failure: error instanceof Failure ? error.message : `This browser cannot examine the file: ${error}`});
  }
};
