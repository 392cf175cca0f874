// PLY files: text, little and big endian. The loader of three.js leaves out faces with more than
// four corners, and does not return from a header that counts many elements without properties.
(function (viewer) {
    'use strict';

    const sizes = {
        char: 1, int8: 1, uchar: 1, uint8: 1, short: 2, int16: 2, ushort: 2, uint16: 2,
        int: 4, int32: 4, uint: 4, uint32: 4, float: 4, float32: 4, double: 8, float64: 8,
    };
    const methods = {
        char: 'getInt8', int8: 'getInt8', uchar: 'getUint8', uint8: 'getUint8',
        short: 'getInt16', int16: 'getInt16', ushort: 'getUint16', uint16: 'getUint16',
        int: 'getInt32', int32: 'getInt32', uint: 'getUint32', uint32: 'getUint32',
        float: 'getFloat32', float32: 'getFloat32', double: 'getFloat64', float64: 'getFloat64',
    };

    function typeOf(text) {
        if (!Object.hasOwn(sizes, text)) throw new Error(`the header has the type "${text}"`);
        return text;
    }

    function propertyOf(fields) {
        if (fields[1] !== 'list') return { type: typeOf(fields[1]), name: fields[2] };
        return { countType: typeOf(fields[2]), type: typeOf(fields[3]), name: fields[4] };
    }

    function readHeaderLine(fields, header) {
        if (fields[0] === 'format') {
            header.format = fields[1];
        } else if (fields[0] === 'element') {
            const count = viewer.numberOf(fields[2]);
            header.elements.push({ name: fields[1], count: count, properties: [] });
        } else if (fields[0] === 'property') {
            if (header.elements.length === 0) throw new Error('a property has no element');
            header.elements[header.elements.length - 1].properties.push(propertyOf(fields));
        }
    }

    function readHeader(bytes) {
        const match = /^ply\s[\s\S]*?\bend_header[^\S\n]*\n/.exec(viewer.latin1(bytes));
        if (!match) throw new Error('the file has no PLY header');
        const header = { format: '', elements: [], size: match[0].length };
        match[0].split('\n').forEach((line) => readHeaderLine(line.trim().split(/\s+/), header));
        return header;
    }

    /** A function that returns the next number of a text. */
    function textSource(bytes) {
        const fields = viewer.latin1(bytes).trim().split(/\s+/);
        let next = 0;
        return () => {
            if (next >= fields.length) throw new RangeError('no number left');
            return viewer.numberOf(fields[next++]);
        };
    }

    /** A function that returns the next number of bytes. A read after the end is a RangeError. */
    function binarySource(bytes, isLittleEndian) {
        const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.length);
        let next = 0;
        return (type) => {
            const value = view[methods[type]](next, isLittleEndian);
            next += sizes[type];
            return value;
        };
    }

    function sourceOf(header, bytes) {
        const body = bytes.subarray(header.size);
        if (header.format === 'ascii') return textSource(body);
        if (header.format === 'binary_little_endian') return binarySource(body, true);
        if (header.format === 'binary_big_endian') return binarySource(body, false);
        throw new Error(`the header has the format "${header.format}"`);
    }

    function readValue(property, next) {
        if (!property.countType) return next(property.type);
        const count = next(property.countType);
        const list = [];
        for (let i = 0; i < count; ++i) list.push(next(property.type));
        return list;
    }

    function addRecord(name, record, triangles) {
        if (name === 'vertex') {
            triangles.addPoint(...['x', 'y', 'z'].map((key) => viewer.numberOf(record.get(key))));
        } else if (name === 'face') {
            const indices = record.get('vertex_indices') || record.get('vertex_index');
            triangles.addPolygon(indices || []);
        }
    }

    /** Reads the elements in the order of the header. Those without properties take no bytes. */
    function readElements(header, next, triangles) {
        for (const element of header.elements.filter((one) => one.properties.length > 0)) {
            for (let i = 0; i < element.count; ++i) {
                const record = new Map();
                for (const property of element.properties) {
                    record.set(property.name, readValue(property, next));
                }
                addRecord(element.name, record, triangles);
            }
        }
    }

    viewer.readers.ply = function (bytes) {
        const header = readHeader(bytes);
        const triangles = viewer.makeTriangles();
        readElements(header, sourceOf(header, bytes), triangles);
        return triangles.positions();
    };
})(window.viewer);
